#pragma once

#include "OrvanStore/connection.h"

namespace orvan {

/// Creates the canonical tables and their indices in an empty store, inside the caller's transaction, and marks the
/// store's version. The tables and what is in them are described beside their definitions.
void createCanonicalSchema(Connection& connection);

} // namespace orvan
