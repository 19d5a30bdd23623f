#pragma once

#include <string>

namespace orvan {

/// Whether somebody is there to be asked: what is typed and what is shown is a terminal's.
bool canAsk();

/// Asks, on a terminal, and waits for the answer. Only a clear yes is one. False where nobody can be asked.
bool isConfirmed(const std::string& question);

} // namespace orvan
