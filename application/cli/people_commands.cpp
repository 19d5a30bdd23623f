#include "application/cli/people_commands.h"

#include <algorithm>
#include <memory>
#include <string>

#include "application/cli/command_set.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/session/people_list.h"

namespace orvan {
namespace {

struct PeopleArguments {
  std::string text;
  bool isAll = false;
};

void runPeople(const CommandContext& context, const PeopleArguments& arguments) {
  auto people = peopleList(context.session, arguments.text, context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(people));
    return;
  }
  const HumanOutput output;
  if (people.empty()) {
    output.line(arguments.text.empty() ? "Nobody yet: 'orvan import' brings in mail and calendars."
                                       : "Nobody you deal with has that in their name or address.");
    return;
  }
  sortByExchange(people, context.session, context.asOf);
  constexpr std::size_t usualRows = 20;
  const bool isCut = output.isTerminal() && !arguments.isAll;
  output.people(people, isCut ? std::min(people.size(), usualRows) : people.size());
}

} // namespace

void addPeopleCommands(CommandSet& commands) {
  const auto arguments = std::make_shared<PeopleArguments>();
  auto& people = commands.add({"people", "To see", "List the people you deal with", "orvan people marsh"},
                              [arguments](const auto& context) { runPeople(context, *arguments); });
  people.add_option("TEXT", arguments->text, "A part of a name or address: list only who has it")
      ->type_name("")
      ->check(notEmpty());
  people.add_flag("--all", arguments->isAll, "Everyone, on a terminal too");
}

} // namespace orvan
