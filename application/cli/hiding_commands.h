#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// What is not to be shown, and what was taken for a reason and is none.
void addHidingCommands(CommandSet& commands);

} // namespace orvan
