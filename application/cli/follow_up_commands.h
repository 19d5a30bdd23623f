#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// "orvan follow-up": what the user wants to be reminded of.
void addFollowUpCommands(CommandSet& commands);

} // namespace orvan
