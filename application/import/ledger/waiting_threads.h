#pragma once

#include <set>
#include <string>

#include "OrvanStore/connection.h"

namespace orvan {

/// Has the store say of each of these threads whether its latest interaction is a mail to the user alone, which then
/// waits. Within the caller's transaction, once the interactions are written.
void refreshWaitingThreads(const std::set<std::string>& threadIDs, Connection& connection);

} // namespace orvan
