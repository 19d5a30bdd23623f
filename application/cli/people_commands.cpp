#include "application/cli/people_commands.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_set.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/corrections/person_corrections.h"
#include "application/corrections/person_suggestions.h"
#include "application/import/address/normal_address.h"
#include "application/session/people_list.h"
#include "application/session/person_lookup.h"

namespace orvan {
namespace {

struct PeopleArguments {
  std::string text;
  bool isAll = false;
};

[[noreturn]] void failWithTheNearest(const CommandContext& context, const std::string& text) {
  try {
    context.session.personKeyOf(text);
  } catch (const PersonNotFound& error) {
    if (context.output == OutputForm::human) {
      HumanOutput{}.choice(error.people());
    }
  }
  throw CommandFailure(ExitCode::failed, "Nobody you deal with has that in their name or address.");
}

void runPeople(const CommandContext& context, const PeopleArguments& arguments) {
  auto people = peopleList(context.session, arguments.text, context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(people));
  }
  if (people.empty() && !arguments.text.empty()) {
    failWithTheNearest(context, arguments.text);
  }
  if (context.output == OutputForm::json) {
    return;
  }
  const HumanOutput output;
  if (people.empty()) {
    output.line("Nobody yet: 'orvan refresh' and 'orvan import' bring in mail, calendars and contacts.");
    return;
  }
  sortByExchange(people, context.session, context.asOf);
  constexpr std::size_t usualRows = 20;
  const bool isCut = output.isTerminal() && !arguments.isAll;
  output.people(people, isCut ? std::min(people.size(), usualRows) : people.size());
}

/// A person as a correction found or left them.
struct Told {
  std::string personKey;
  std::string displayName;
  std::vector<std::string> addresses;
};

Told tellOf(const std::string& personKey, Connection& connection) {
  return {personKey,
          connection.fetchOptionalText("SELECT display_name FROM person WHERE id = ?", personKey).value_or(""),
          addressesOf(personKey, connection)};
}

Json toJson(const Told& person) {
  return {{"personKey", person.personKey}, {"displayName", person.displayName}, {"addresses", person.addresses}};
}

/// "a, b and c"
std::string enumerated(const std::vector<std::string>& parts) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
  }
  return printableText(text);
}

/// "Ada Marsh (ada@hill.example and ada@mill.example)"
std::string inWords(const Told& person) {
  const auto addresses = enumerated(person.addresses);
  return printableText(person.displayName) + (addresses.empty() ? "" : " (" + addresses + ")");
}

constexpr const char* canBeTakenBack = "'orvan undo' takes that back.";

struct Merge {
  std::vector<Told> before;
  Told after;
};

/// The first is who they all become.
Merge merge(const std::vector<std::string>& personKeys, Instant now, Connection& connection) {
  std::vector<Told> before;
  before.reserve(personKeys.size());
  for (const auto& personKey : personKeys) {
    before.push_back(tellOf(personKey, connection));
  }
  mergePeopleForUser(personKeys.front(), std::span{personKeys}.subspan(1), now, connection);
  return {std::move(before), tellOf(personKeys.front(), connection)};
}

void print(const Merge& merged) {
  std::vector<std::string> before;
  before.reserve(merged.before.size());
  for (const auto& person : merged.before) {
    before.push_back(inWords(person));
  }
  HumanOutput{}.line(enumerated(before) + " are one person now: " + inWords(merged.after) + ".");
}

void runMerge(const CommandContext& context, const std::vector<std::string>& people) {
  const auto merged = context.session.writableStore().write([&](Connection& connection) {
    std::vector<std::string> personKeys;
    personKeys.reserve(people.size());
    for (const auto& person : people) {
      personKeys.push_back(personKeyCalled(person, connection));
    }
    return merge(personKeys, context.asOf, connection);
  });
  if (context.output == OutputForm::json) {
    printJson(toJson(merged.after));
  } else {
    print(merged);
    HumanOutput{}.line(canBeTakenBack);
  }
}

void runSplit(const CommandContext& context, const std::string& written) {
  const auto address = normalAddress(written);
  if (!address) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "'orvan people split' takes a mail address, such as "
                         "ada@hill.example.");
  }
  const auto [parted, left] = context.session.writableStore().write([&](Connection& connection) {
    const auto from = personKeyCalled(*address, connection);
    const auto own = splitAddress(*address, context.asOf, connection).personID;
    return std::pair{tellOf(own, connection), tellOf(from, connection)};
  });
  if (context.output == OutputForm::json) {
    printJson({{"parted", toJson(parted)}, {"left", toJson(left)}});
  } else {
    const HumanOutput output;
    output.line(inWords(parted) + " is a person of its own now, apart from " + inWords(left) + ".");
    output.line(canBeTakenBack);
  }
}

/// Whether there was something to do.
bool rename(const std::string& personKey, const std::string& name, Instant now, Connection& connection) {
  if (name.empty()) {
    return giveNameBackForUser(personKey, now, connection).has_value();
  }
  renamePersonForUser(personKey, name, now, connection);
  return true;
}

void runRename(const CommandContext& context, const std::string& person, const std::string& name) {
  const auto [before, after, isDone] = context.session.writableStore().write([&](Connection& connection) {
    const auto personKey = personKeyCalled(person, connection);
    const auto earlier = tellOf(personKey, connection);
    const bool isRenamed = rename(personKey, name, context.asOf, connection);
    return std::tuple{earlier, tellOf(personKey, connection), isRenamed};
  });
  if (context.output == OutputForm::json) {
    printJson(toJson(after));
  } else if (!isDone) {
    HumanOutput{}.line(inWords(before) + " is called as mail says already.");
  } else {
    const HumanOutput output;
    output.line(inWords(before) + " is called " + printableText(after.displayName) +
                (name.empty() ? " now, as mail says." : " now, whatever mail says."));
    output.line(canBeTakenBack);
  }
}

std::string_view caseName(SuggestionGround ground) noexcept {
  return ground == SuggestionGround::sameName ? "sameName" : "sameNameOnCard";
}

std::string inWords(SuggestionGround ground) {
  return ground == SuggestionGround::sameName ? "they go by the same full name"
                                              : "they go by the same full name, which a contact card of yours has, too";
}

void printSuggestionsJson(const std::vector<MergeSuggestion>& suggestions) {
  auto document = Json::array();
  for (const auto& suggestion : suggestions) {
    auto people = Json::array();
    for (const auto& person : suggestion.people) {
      people.push_back(toJson(Told{person.personID, person.displayName, person.addresses}));
    }
    document.push_back({{"number", document.size() + 1}, {"ground", caseName(suggestion.ground)}, {"people", people}});
  }
  printJson(document);
}

void print(const std::vector<MergeSuggestion>& suggestions) {
  const HumanOutput output;
  std::size_t number = 0;
  for (const auto& suggestion : suggestions) {
    std::vector<std::string> people;
    people.reserve(suggestion.people.size());
    for (const auto& person : suggestion.people) {
      people.push_back(inWords(Told{person.personID, person.displayName, person.addresses}));
    }
    output.line(std::to_string(++number) + "  " + enumerated(people) + ": " + inWords(suggestion.ground));
  }
  output.line(suggestions.empty() ? "There is nobody who looks like somebody else."
                                  : "\n'orvan people suggest NUMBER' makes them one, --all does so with all of them.");
}

struct SuggestArguments {
  std::vector<std::size_t> numbers;
  bool isAll = false;
};

/// In the order given, each once.
std::vector<std::size_t> chosenAmong(std::size_t count, const SuggestArguments& arguments) {
  std::vector<std::size_t> chosen;
  for (std::size_t number = 1; number <= count; ++number) {
    if (arguments.isAll || std::ranges::find(arguments.numbers, number) != arguments.numbers.end()) {
      chosen.push_back(number);
    }
  }
  const bool isOutside =
      std::ranges::any_of(arguments.numbers, [&](auto number) { return number < 1 || number > count; });
  if (isOutside) {
    throw CommandFailure(ExitCode::failed, "There is no suggestion of that number; 'orvan people suggest' lists them.");
  }
  return chosen;
}

std::vector<Merge> acceptSuggestions(const SuggestArguments& arguments, Instant now, Connection& connection) {
  const auto suggestions = mergeSuggestions(connection);
  std::vector<Merge> merged;
  for (const auto number : chosenAmong(suggestions.size(), arguments)) {
    std::vector<std::string> personKeys;
    for (const auto& person : suggestions.at(number - 1).people) {
      personKeys.push_back(person.personID);
    }
    merged.push_back(merge(personKeys, now, connection));
  }
  return merged;
}

void runAccepting(const CommandContext& context, const SuggestArguments& arguments) {
  const auto merged = context.session.writableStore().write(
      [&](Connection& connection) { return acceptSuggestions(arguments, context.asOf, connection); });
  if (context.output == OutputForm::json) {
    auto document = Json::array();
    for (const auto& one : merged) {
      document.push_back(toJson(one.after));
    }
    printJson(document);
    return;
  }
  for (const auto& one : merged) {
    print(one);
  }
  HumanOutput{}.line(merged.empty() ? "There was nothing to accept." : canBeTakenBack);
}

void runSuggest(const CommandContext& context, const SuggestArguments& arguments) {
  if (arguments.isAll || !arguments.numbers.empty()) {
    runAccepting(context, arguments);
    return;
  }
  const auto suggestions =
      context.session.readableStore().read([](Connection& connection) { return mergeSuggestions(connection); });
  if (context.output == OutputForm::json) {
    printSuggestionsJson(suggestions);
  } else {
    print(suggestions);
  }
}

void addMerge(CommandSet& commands, CLI::App& people) {
  const auto merged = std::make_shared<std::vector<std::string>>();
  commands
      .addTo(people,
             {"merge", nullptr, "Make several people one: the first, with all that the others have",
              "orvan people merge ada@hill.example ada.marsh@mill.example"},
             [merged](const auto& context) { runMerge(context, *merged); })
      .add_option("PERSON", *merged, "Two people or more, by key, name or address")
      ->type_name("")
      ->required()
      ->expected(2, CLI::detail::expected_max_vector_size)
      ->check(notEmpty());
}

void addSplit(CommandSet& commands, CLI::App& people) {
  const auto address = std::make_shared<std::string>();
  commands
      .addTo(people,
             {"split", nullptr, "Make an address a person of its own", "orvan people split ada.marsh@mill.example"},
             [address](const auto& context) { runSplit(context, *address); })
      .add_option("ADDRESS", *address, "An address of somebody who has another one, too")
      ->type_name("")
      ->required()
      ->check(notEmpty());
}

void addRename(CommandSet& commands, CLI::App& people) {
  const auto person = std::make_shared<std::string>();
  const auto name = std::make_shared<std::string>();
  auto& rename = commands.addTo(
      people,
      {"rename", nullptr, "Call a person by another name", "orvan people rename ada@hill.example \"Ada Marsh\""},
      [person, name](const auto& context) { runRename(context, *person, *name); });
  takePerson(rename, *person);
  rename.add_option("NAME", *name, "The name to use from now on; \"\" for the one that mail gives")
      ->type_name("")
      ->required();
}

void addSuggest(CommandSet& commands, CLI::App& people) {
  const auto arguments = std::make_shared<SuggestArguments>();
  auto& suggest = commands.addTo(
      people, {"suggest", nullptr, "List people who may be one, or make them one", "orvan people suggest 1"},
      [arguments](const auto& context) { runSuggest(context, *arguments); });
  suggest.add_option("NUMBER,--accept", arguments->numbers, "Make those of the list one")->type_name("NUMBER");
  suggest.add_flag("--all", arguments->isAll, "Make all of them one");
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
  addMerge(commands, people);
  addSplit(commands, people);
  addRename(commands, people);
  addSuggest(commands, people);
}

} // namespace orvan
