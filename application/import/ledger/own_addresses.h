#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

/// The user's addresses that earlier imports were told.
std::set<std::string> ownAddresses(Connection& connection);

/// Adds to them and returns them all. An address that was taken for somebody else's so far is the user's from now on:
/// its person ends, and the mails sent from it are the user's. Within the caller's transaction.
std::set<std::string> rememberOwnAddresses(std::span<const std::string> addresses, std::string_view now,
                                           Connection& connection);

} // namespace orvan
