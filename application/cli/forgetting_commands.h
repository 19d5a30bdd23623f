#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// "forget": a person and everything the store holds of them is deleted, for good.
void addForgettingCommands(CommandSet& commands);

} // namespace orvan
