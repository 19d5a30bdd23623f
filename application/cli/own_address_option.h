#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/database_queue.h"

namespace orvan {

/// "--me ADDRESS...", for commands that read mail.
void takeOwnAddresses(CLI::App& command, std::vector<std::string>& addresses);

/// Those given, which are remembered, and those that were told before. Throws CommandFailure when there are none, or
/// one given is no address.
std::vector<std::string> ownAddressesWith(const std::vector<std::string>& given, Instant now, DatabaseQueue& store);

} // namespace orvan
