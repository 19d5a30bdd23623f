#pragma once

#include <span>

#include "application/cli/command_failure.h"

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace orvan {

// What is wrong with the words of a command line. A command's or an option's name may be told back to the user, what
// they wrote beside it never: that may be somebody's name.

/// Throws CommandFailure when the word in the command's place is no command of `program`, whatever else is asked for:
/// the parser would call for help, or miss a command. `words` begin with the program's own name.
void requireCommand(const CLI::App& program, std::span<const char* const> words);

/// Throws CommandFailure when `program` met options or words that nothing takes.
void requireNothingLeftOver(const CLI::App& program);

/// The failure that the parser's complaint means to the user.
CommandFailure failureOf(const CLI::App& program, const CLI::ParseError& complaint);

} // namespace orvan
