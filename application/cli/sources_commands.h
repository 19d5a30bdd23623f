#pragma once

namespace orvan {

class CommandSet;

/// "sources", and the commands within it that say what is to be kept up to date.
void addSourcesCommands(CommandSet& commands);

/// "refresh".
void addRefreshCommand(CommandSet& commands);

} // namespace orvan
