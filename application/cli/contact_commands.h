#pragma once

namespace orvan {

class CommandSet;

/// "contact" and "overview": how contact went, with one person and with everybody.
void addContactCommands(CommandSet& commands);

} // namespace orvan
