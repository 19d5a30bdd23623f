#pragma once

namespace orvan {

class CommandSet;

/// "people", and the commands within it that put right who is who.
void addPeopleCommands(CommandSet& commands);

} // namespace orvan
