#pragma once

#include "OrvanStore/connection.h"

namespace orvan::internal {

/// The tables that keep what the user has put right and what the application remembers for the user: actions that can
/// be taken back, names, own addresses, and the sources that are read again. Within the caller's transaction.
void createWhatTheUserSays(Connection& connection);

} // namespace orvan::internal
