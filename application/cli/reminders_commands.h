#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// "orvan reminders": the service that shows reminders.
void addRemindersCommands(CommandSet& commands);

} // namespace orvan
