#pragma once

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"

namespace orvan {

// How fresh a source is changes with time alone, and the library reads it as it is stored. What imports brought is
// "current" while the last success is younger than the source's usual interval, a day where none is remembered, and
// "stale" after that; so is a source that failed. What other programs keep of theirs is left to them. Both are one
// statement.

/// Whether what is stored is not what holds at `asOf`.
bool isFreshnessOutdated(Instant asOf, Connection& connection);

void bringFreshnessUpToDate(Instant asOf, Connection& connection);

} // namespace orvan
