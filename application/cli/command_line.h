#pragma once

namespace orvan {

/// Runs the command that the arguments name and returns the program's exit status: 0 done, 1 the operation failed, 2
/// the command line was wrong, 3 the store or its key cannot be opened. A failure is one sentence on standard error.
int runCommandLine(int argc, const char* const* argv);

} // namespace orvan
