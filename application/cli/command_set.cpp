#include "application/cli/command_set.h"

#include <string>
#include <utility>

namespace orvan {

CLI::App& CommandSet::add(const CommandText& text, RunCommand run) {
  auto& command = addTo(program_, text, std::move(run));
  command.group(text.group);
  return command;
}

CLI::App& CommandSet::addTo(CLI::App& command, const CommandText& text, RunCommand run) {
  auto* added = command.add_subcommand(text.name, text.about);
  added->footer(std::string{"Example:\n  "} + text.example +
                "\n\nEvery command also takes the options that 'orvan --help' lists.");
  added->group("Commands");
  added->fallthrough();
  // The callbacks of a command within another one run before the other's.
  added->callback([this, added, run = std::move(run)] {
    if (added->get_subcommands().empty()) {
      chosen_ = run;
    }
  });
  return *added;
}

CLI::Validator notEmpty() {
  return {[](const std::string& value) { return value.empty() ? "takes a value" : ""; }, ""};
}

CLI::Validator wholeNumber() {
  return {[](const std::string& value) {
            constexpr std::size_t mostDigits = 18;
            return value.find_first_not_of("0123456789") == std::string::npos && !value.empty() &&
                           value.size() <= mostDigits
                       ? ""
                       : "takes a number from 0 upwards";
          },
          ""};
}

void takePerson(CLI::App& command, std::string& person) {
  command.add_option("PERSON", person, "A person's key, name or address")->type_name("")->required()->check(notEmpty());
}

void takeItem(CLI::App& command, std::string& item) {
  command.add_option("ITEM", item, "An item's key, or a person's key, name or address")
      ->type_name("")
      ->required()
      ->check(notEmpty());
}

} // namespace orvan
