#pragma once

#include "application/cli/command_set.h"

namespace orvan {

/// backup, restore, rekey and key.
void addBackupCommands(CommandSet& commands);

/// export.
void addExportCommand(CommandSet& commands);

} // namespace orvan
