#pragma once

#include <span>
#include <string>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// A mail to the user alone with which a thread ends.
struct WaitingMail {
  std::string threadID;
  std::string interactionID;
};

/// Has the store say of each of these threads whether its latest interaction is a mail to the user alone, which then
/// waits unless the user said that it does not, and gives those that do. Within the caller's transaction, once the
/// interactions are written.
std::vector<WaitingMail> refreshWaitingThreads(std::span<const std::string> threadIDs, Connection& connection);

} // namespace orvan
