#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// "me": which addresses are the user's own.
void addOwnAddressCommands(CommandSet& commands);

} // namespace orvan
