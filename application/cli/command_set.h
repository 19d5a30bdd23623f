#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "application/cli/commands.h"

namespace orvan {

/// How the help presents a command.
struct CommandText {
  const char* name;
  /// Under which heading the list of commands has it; nullptr for one within another command.
  const char* group;
  const char* about;
  /// A whole line, as one would type it.
  const char* example;
};

using RunCommand = std::function<void(const CommandContext&)>;

/// The program's commands while they are put together, and the one that the command line chose.
class CommandSet {
 public:
  /// `program` must outlive the set, and the set the parsing.
  explicit CommandSet(CLI::App& program) : program_(program) {}
  CommandSet(const CommandSet&) = delete;
  CommandSet& operator=(const CommandSet&) = delete;

  CLI::App& add(const CommandText& text, RunCommand run);
  /// One that is a command of another's, as in "people merge". Without such a word the other runs itself.
  CLI::App& addTo(CLI::App& command, const CommandText& text, RunCommand run);

  /// What the command line chose; empty before it was parsed.
  const RunCommand& chosen() const noexcept { return chosen_; }

 private:
  CLI::App& program_;
  RunCommand chosen_;
};

/// An empty value is a slip, such as a variable that is not set, and must not stand for the default.
CLI::Validator notEmpty();
CLI::Validator wholeNumber();

/// A place for a person, or an item, among a command's words.
void takePerson(CLI::App& command, std::string& person);
void takeItem(CLI::App& command, std::string& item);

} // namespace orvan
