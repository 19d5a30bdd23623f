#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

/// Adds to the addresses that earlier imports were told and returns them all. An address that was taken for somebody
/// else's so far is the user's from now on: its person ends, and the mails sent from it are the user's. Whom those went
/// to, and which mails were to the user alone, is learned when they are read again. Within the caller's transaction.
std::set<std::string> rememberOwnAddresses(std::span<const std::string> addresses, std::string_view now,
                                           Connection& connection);

} // namespace orvan
