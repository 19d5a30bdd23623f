#pragma once

#include "application/sources/remembered_source.h"

namespace orvan {

/// Whether something of the source changed since it was last read, told from the times of its files alone: a look that
/// opens none of them. What was never read is news as a whole. Nothing is told of what cannot be looked at.
bool hasNews(const RememberedSource& source);

} // namespace orvan
