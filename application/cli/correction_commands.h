#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// What the user says about people and reasons, and taking back what they did.
void addCorrectionCommands(CommandSet& commands);

} // namespace orvan
