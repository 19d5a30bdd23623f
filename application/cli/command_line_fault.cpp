#include "application/cli/command_line_fault.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "application/session/nearest_words.h"

namespace orvan {
namespace {

CommandFailure wrongWords(const std::string& sentence) {
  return {ExitCode::wrongCommandLine, sentence};
}

/// "'orvan why'", or "'orvan'" when no command was found.
std::string callOf(const CLI::App& program, std::string_view more = "") {
  const auto commands = program.get_subcommands();
  return "'orvan" + (commands.empty() ? "" : " " + commands.front()->get_name()) + std::string{more} + "'";
}

/// Whether it could be a command's or an option's name. Anything else may be somebody's name or address in the wrong
/// place.
bool isName(std::string_view word) {
  return std::ranges::all_of(word, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  });
}

/// The word to be told back, when it may be.
std::string quoted(std::string_view word, const std::string& otherwise) {
  return isName(word) ? "'" + std::string{word} + "'" : otherwise;
}

/// "'a', 'b' or 'c'"
std::string alternatives(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + ("'" + words[i] + "'");
  }
  return text;
}

bool isOption(std::string_view word) {
  return word.size() > 1 && word.starts_with('-') && word != "--";
}

/// "--until" of "--until=3d", and "-x" of "-xyz".
std::string_view nameOfOption(std::string_view word) {
  return word.starts_with("--") ? word.substr(0, word.find('=')) : word.substr(0, 2);
}

std::vector<std::string> commandNames(const CLI::App& program) {
  std::vector<std::string> names;
  for (const auto* command : program.get_subcommands({})) {
    names.push_back(command->get_name());
  }
  return names;
}

void appendOptionNames(const CLI::App& app, std::vector<std::string>& names) {
  for (const auto* option : app.get_options({})) {
    for (const auto& name : option->get_lnames()) {
      names.push_back("--" + name);
    }
  }
}

/// Of the command, if one was found, and of the program.
std::vector<std::string> optionNames(const CLI::App& program) {
  std::vector<std::string> names;
  for (const auto* command : program.get_subcommands()) {
    appendOptionNames(*command, names);
  }
  appendOptionNames(program, names);
  return names;
}

/// Nothing for a word that is no name, and so like none.
std::string nearest(std::string_view word, const std::vector<std::string>& known) {
  return isName(word) ? "the nearest is " + alternatives(nearestWords(word, known)) + ", and " : "";
}

CommandFailure unknownCommand(std::string_view word, const std::vector<std::string>& known) {
  return wrongWords(quoted(word, "The word in the command's place") + " is no command; " + nearest(word, known) +
                    "'orvan --help' lists the commands.");
}

CommandFailure unknownOption(const CLI::App& program, std::string_view word) {
  const auto name = nameOfOption(word);
  return wrongWords(quoted(name, "That") + " is no option of " + callOf(program) + "; " +
                    nearest(name, optionNames(program)) + callOf(program, " --help") + " lists them all.");
}

/// The name of the one word that the command takes.
std::optional<std::string> placeOf(const CLI::App& program) {
  const auto commands = program.get_subcommands();
  if (commands.empty()) {
    return std::nullopt;
  }
  const auto places = commands.front()->get_options([](const CLI::Option* option) { return option->get_positional(); });
  return places.empty() ? std::nullopt : std::optional{places.front()->get_name(true, false)};
}

CommandFailure surplusWord(const CLI::App& program) {
  const auto place = placeOf(program);
  if (place) {
    return wrongWords(callOf(program) + " takes one " + *place + "; put a name with blanks in quotes, as in 'orvan " +
                      program.get_subcommands().front()->get_name() + " \"FIRST LAST\"'.");
  }
  return wrongWords(callOf(program) + " takes no words but its options; " + callOf(program, " --help") +
                    " lists them.");
}

} // namespace

void requireCommand(const CLI::App& program, std::span<const char* const> words) {
  const auto known = commandNames(program);
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::string word = words[i];
    if (isOption(word)) {
      const auto* option = program.get_option_no_throw(std::string{nameOfOption(word)});
      if (option == nullptr) {
        throw unknownOption(program, word);
      }
      const bool takesNextWord = option->get_items_expected_min() > 0 && !word.contains('=');
      i += takesNextWord ? 1 : 0;
    } else if (std::ranges::find(known, word) == known.end()) {
      throw unknownCommand(word, known);
    } else {
      return;
    }
  }
}

void requireNothingLeftOver(const CLI::App& program) {
  const auto leftOver = program.remaining(true);
  const auto option = std::ranges::find_if(leftOver, isOption);
  if (option != leftOver.end()) {
    throw unknownOption(program, *option);
  }
  if (!leftOver.empty()) {
    throw surplusWord(program);
  }
}

CommandFailure failureOf(const CLI::App& program, const CLI::ParseError& complaint) {
  const bool lacksSomething = dynamic_cast<const CLI::RequiredError*>(&complaint) != nullptr;
  if (lacksSomething && program.get_subcommands().empty()) {
    return wrongWords("Say what to do; 'orvan --help' lists the commands.");
  }
  const std::string seeHelp = "; " + callOf(program, " --help") + " tells what can be said.";
  // These name options alone. The others may hold what the user wrote.
  if (lacksSomething || dynamic_cast<const CLI::ValidationError*>(&complaint) != nullptr ||
      dynamic_cast<const CLI::ArgumentMismatch*>(&complaint) != nullptr) {
    return wrongWords(complaint.what() + seeHelp);
  }
  return wrongWords("An option has a value that it does not take" + seeHelp);
}

} // namespace orvan
