#include "application/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <functional>
#include <iostream>
#include <span>
#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_line_fault.h"
#include "application/cli/commands.h"

namespace orvan {
namespace {

/// What the command line says. `run` is the chosen command.
struct Invocation {
  std::string store;
  std::string keyFile;
  std::string asOf;
  std::int64_t maxPeople = AttentionEvidenceCompilerOptions::defaults.maxPeopleGlobalCap();
  bool isJson = false;
  CatchUpArguments catchUp;
  std::string person;
  std::string text;
  std::string item;
  std::string until;
  OpenArguments open;
  ImportArguments import;
  std::function<void(const CommandContext&)> run;
};

/// An empty value is a slip, such as a variable that is not set, and must not stand for the default.
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

/// How the help presents a command.
struct CommandText {
  const char* name;
  /// Under which heading the list of commands has it.
  const char* group;
  const char* about;
  /// A whole line, as one would type it.
  const char* example;
};

CLI::App* addCommand(CLI::App& program, Invocation& invocation, const CommandText& text,
                     std::function<void(const CommandContext&)> run) {
  auto* command = program.add_subcommand(text.name, text.about);
  command->group(text.group);
  command->footer(std::string{"Example:\n  "} + text.example +
                  "\n\nEvery command also takes the options that 'orvan --help' lists.");
  command->fallthrough();
  command->callback([&invocation, run = std::move(run)] { invocation.run = run; });
  return command;
}

void addGlobalOptions(CLI::App& program, Invocation& invocation) {
  program.add_option("--store", invocation.store, "The store file (default: in your data folder)")
      ->type_name("FILE")
      ->check(notEmpty());
  program.add_option("--key-file", invocation.keyFile, "The file with the store's key")
      ->type_name("FILE")
      ->check(notEmpty());
  program.add_option("--as-of", invocation.asOf, "Take this moment for now, in whole seconds: 2026-03-04T09:15:00Z")
      ->type_name("RFC3339")
      ->check(notEmpty());
  program.add_option("--max-people", invocation.maxPeople, "How many people are looked at, the most worthwhile first")
      ->type_name("NUMBER")
      ->check(wholeNumber())
      ->capture_default_str();
  program.add_flag("--json", invocation.isJson, "Print one JSON document instead of text");
}

void addFirstCommands(CLI::App& program, Invocation& invocation) {
  addCommand(program, invocation,
             {"init", "To begin", "Make the key, if there is none, and an empty encrypted store", "orvan init"},
             runInit);
  auto* import = addCommand(program, invocation,
                            {"import", "To begin", "Bring in mail and calendars; safe to stop and to repeat",
                             "orvan import --me you@example.org --mbox ~/mail/inbox.mbox --ics ~/calendar.ics"},
                            [&invocation](const auto& context) { runImport(context, invocation.import); });
  import->add_option("--me", invocation.import.ownAddresses, "Your own mail addresses (remembered)")
      ->type_name("ADDRESS")
      ->check(notEmpty());
  import->add_option("--mbox", invocation.import.mboxes, "An mbox file")->type_name("FILE")->check(notEmpty());
  import->add_option("--maildir", invocation.import.maildirs, "A Maildir folder")
      ->type_name("FOLDER")
      ->check(notEmpty());
  import->add_option("--ics", invocation.import.calendars, "An iCalendar file")->type_name("FILE")->check(notEmpty());
}

/// The place of a person among a command's words.
void takePerson(CLI::App& command, Invocation& invocation) {
  command.add_option("PERSON", invocation.person, "A person's key, name or address")
      ->type_name("")
      ->required()
      ->check(notEmpty());
}

void addCatchUpCommand(CLI::App& program, Invocation& invocation) {
  auto* command =
      addCommand(program, invocation,
                 {"catch-up", "To see", "List whom to get back in touch with now, and why", "orvan catch-up --explain"},
                 [&invocation](const auto& context) { runCatchUp(context, invocation.catchUp); });
  auto* all = command->add_flag("--all", invocation.catchUp.isAll, "Everyone on the list, what is older too");
  command
      ->add_option("--limit", invocation.catchUp.limit, "How many people to show at most (default on a terminal: 10)")
      ->type_name("NUMBER")
      ->check(wholeNumber())
      ->excludes(all);
  command->add_flag("--explain", invocation.catchUp.isExplained,
                    "Also say why each stands where they stand, and of everyone else why they are not listed");
}

/// The place of an item among a command's words.
void takeItem(CLI::App& command, std::string& item) {
  command.add_option("ITEM", item, "An item's key, or a person's key, name or address")
      ->type_name("")
      ->required()
      ->check(notEmpty());
}

void addItemReadingCommands(CLI::App& program, Invocation& invocation) {
  takeItem(*addCommand(program, invocation,
                       {"show", "To see", "Show an item with its conversation and all else there is with the person",
                        "orvan show \"Ada Marsh\""},
                       [&invocation](const auto& context) { runShow(context, invocation.item); }),
           invocation.item);
  auto* open = addCommand(
      program, invocation,
      {"open", "To see", "Open the message behind an item in your mail program", "orvan open ada@hill.example"},
      [&invocation](const auto& context) { runOpen(context, invocation.open); });
  takeItem(*open, invocation.open.item);
  open->add_flag("--print", invocation.open.isPrinted, "Print the message's mid: address instead");
}

void addReadingCommands(CLI::App& program, Invocation& invocation) {
  addCatchUpCommand(program, invocation);
  addItemReadingCommands(program, invocation);
  takePerson(*addCommand(program, invocation,
                         {"why", "To see", "Say why to get in touch with a person now", "orvan why \"Ada Marsh\""},
                         [&invocation](const auto& context) { runWhy(context, invocation.person); }),
             invocation);
  addCommand(program, invocation, {"people", "To see", "List the people you deal with", "orvan people marsh"},
             [&invocation](const auto& context) { runPeople(context, invocation.text); })
      ->add_option("TEXT", invocation.text, "A part of a name or address: list only who has it")
      ->type_name("")
      ->check(notEmpty());
  takePerson(*addCommand(program, invocation,
                         {"bundle", "To see", "Show all evidence on one person", "orvan bundle ada@hill.example"},
                         [&invocation](const auto& context) { runBundle(context, invocation.person); }),
             invocation);
  addCommand(program, invocation,
             {"bundles", "To see", "Show all evidence on everyone who has some", "orvan bundles --json"}, runBundles);
}

CLI::App* addItemCommand(CLI::App& program, Invocation& invocation, const CommandText& text, ItemCommand kind) {
  auto* command = addCommand(program, invocation, text, [&invocation, kind](const auto& context) {
    runItemCommand(context, kind, invocation.item, invocation.until);
  });
  takeItem(*command, invocation.item);
  return command;
}

void addDecidingCommands(CLI::App& program, Invocation& invocation) {
  addItemCommand(program, invocation,
                 {"snooze", "To decide", "Hide an item for a while", "orvan snooze ada@hill.example --until 3d"},
                 ItemCommand::snooze)
      ->add_option("--until", invocation.until, "A moment in whole seconds, a date, 3d, 2w, tomorrow, or a weekday")
      ->type_name("WHEN")
      ->required();
  addItemCommand(program, invocation, {"dismiss", "To decide", "Hide an item for good", "orvan dismiss \"Ada Marsh\""},
                 ItemCommand::dismiss);
  addItemCommand(program, invocation,
                 {"resolve", "To decide", "Mark an item's matter as settled", "orvan resolve ada@hill.example"},
                 ItemCommand::resolve);
  takePerson(
      *addCommand(program, invocation,
                  {"records", "To decide", "Show what was decided about a person", "orvan records \"Ada Marsh\""},
                  [&invocation](const auto& context) { runRecords(context, invocation.person); }),
      invocation);
}

void addKeepingCommands(CLI::App& program, Invocation& invocation) {
  addCommand(program, invocation,
             {"doctor", "To keep it in order", "Check key, store and file modes, and say what to do", "orvan doctor"},
             runDoctor);
  addCommand(program, invocation,
             {"checkpoint", "To keep it in order", "Move the write-ahead log into the store file", "orvan checkpoint"},
             runCheckpoint);
}

SessionSettings settingsOf(const Invocation& invocation) {
  auto settings = SessionSettings::defaults();
  if (!invocation.store.empty()) {
    settings.store = invocation.store;
  }
  if (!invocation.keyFile.empty()) {
    settings.keyFile = invocation.keyFile;
  }
  settings.peopleCap = invocation.maxPeople;
  return settings;
}

Instant asOfIn(const Invocation& invocation) {
  if (invocation.asOf.empty()) {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
  }
  const auto asOf = parseInternetDateTime(invocation.asOf);
  if (!asOf) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "--as-of takes a moment such as 2026-03-04T09:15:00Z or 2026-03-04T09:15:00+01:00.");
  }
  return *asOf;
}

int report(const CommandFailure& failure) {
  std::cerr << "orvan: " << failure.what() << '\n';
  return static_cast<int>(failure.code());
}

/// A full disk shows only now.
void finishOutput() {
  std::cout.flush();
  if (!std::cout) {
    throw CommandFailure(ExitCode::failed, "The output could not be written; check where it goes.");
  }
}

void run(const Invocation& invocation) {
  const Instant asOf = asOfIn(invocation);
  Session session(settingsOf(invocation));
  try {
    invocation.run({session, asOf, invocation.isJson ? OutputForm::json : OutputForm::human});
  } catch (...) {
    session.finish();
    throw;
  }
  session.finish();
}

/// Reads the words; false when they asked for help or the version, which was printed then.
bool parse(CLI::App& program, std::span<const char* const> words) {
  requireCommand(program, words);
  try {
    program.parse(static_cast<int>(words.size()), words.data());
    return true;
  } catch (const CLI::ParseError& found) {
    // What the user got wrong comes first: it tells more than what is lacking for it, and more than any help.
    requireNothingLeftOver(program);
    if (found.get_exit_code() != 0) {
      throw failureOf(program, found);
    }
    program.exit(found);
    return false;
  }
}

void addCommands(CLI::App& program, Invocation& invocation) {
  addGlobalOptions(program, invocation);
  addFirstCommands(program, invocation);
  addReadingCommands(program, invocation);
  addDecidingCommands(program, invocation);
  addKeepingCommands(program, invocation);
}

} // namespace

int runCommandLine(int argc, const char* const* argv) {
  Invocation invocation;
  CLI::App program{"Whom to get back in touch with now, and why.", "orvan"};
  program.require_subcommand(1);
  program.set_version_flag("--version", std::string{"orvan "} + ORVAN_VERSION);
  program.get_formatter()->label("SUBCOMMAND", "COMMAND");
  program.get_formatter()->label("Positionals", "Words");
  program.footer("'orvan COMMAND --help' tells what a command takes, with an example.");
  addCommands(program, invocation);
  try {
    if (parse(program, {argv, static_cast<std::size_t>(argc)})) {
      run(invocation);
    }
    finishOutput();
    return static_cast<int>(ExitCode::done);
  } catch (...) {
    std::cout.flush();
    return report(failureOfCurrentException());
  }
}

} // namespace orvan
