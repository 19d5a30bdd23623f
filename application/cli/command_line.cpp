#include "application/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <iostream>
#include <memory>
#include <span>
#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "application/cli/backup_commands.h"
#include "application/cli/command_failure.h"
#include "application/cli/command_line_fault.h"
#include "application/cli/command_set.h"
#include "application/cli/contact_commands.h"
#include "application/cli/correction_commands.h"
#include "application/cli/follow_up_commands.h"
#include "application/cli/forgetting_commands.h"
#include "application/cli/hiding_commands.h"
#include "application/cli/human_output.h"
#include "application/cli/own_address_commands.h"
#include "application/cli/own_address_option.h"
#include "application/cli/people_commands.h"
#include "application/cli/reminders_commands.h"
#include "application/cli/sources_commands.h"
#include "application/session/person_lookup.h"

namespace orvan {
namespace {

/// What the command line says.
struct Invocation {
  std::string store;
  std::string keyFile;
  std::string asOf;
  std::int64_t maxPeople = AttentionEvidenceCompilerOptions::defaults.maxPeopleGlobalCap();
  bool isJson = false;
  CatchUpArguments catchUp;
  std::string person;
  std::string item;
  DecisionArguments decision;
  OpenArguments open;
  ImportArguments import;
};

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

void addFirstCommands(CommandSet& commands, Invocation& invocation) {
  const auto keyPlace = std::make_shared<KeyPlace>(KeyPlace::file);
  commands
      .add({"init", "To begin", "Make the key, if there is none, and an empty encrypted store", "orvan init"},
           [keyPlace](const auto& context) { runInit(context, *keyPlace); })
      .add_flag_callback(
          "--keyring", [keyPlace] { *keyPlace = KeyPlace::keyring; }, "Keep the key in the desktop's keyring");
  auto& import =
      commands.add({"import", "To begin", "Bring in mail, calendars and contact cards; safe to stop and to repeat",
                    "orvan import --me you@example.org --mbox ~/mail/inbox.mbox --ics ~/calendar.ics"},
                   [&invocation](const auto& context) { runImport(context, invocation.import); });
  takeOwnAddresses(import, invocation.import.ownAddresses);
  import.add_option("--mbox", invocation.import.mboxes, "An mbox file")->type_name("FILE")->check(notEmpty());
  import.add_option("--maildir", invocation.import.maildirs, "A Maildir folder")
      ->type_name("FOLDER")
      ->check(notEmpty());
  import.add_option("--ics", invocation.import.calendars, "An iCalendar file")->type_name("FILE")->check(notEmpty());
  import.add_option("--vcard", invocation.import.cards, "A file of contact cards, or a folder of them")
      ->type_name("PATH")
      ->check(notEmpty());
}

void addCatchUpCommand(CommandSet& commands, Invocation& invocation) {
  auto& command = commands.add(
      {"catch-up", "To see", "List whom to get back in touch with now, and why", "orvan catch-up --explain"},
      [&invocation](const auto& context) { runCatchUp(context, invocation.catchUp); });
  auto* all = command.add_flag("--all", invocation.catchUp.isAll, "Everyone on the list, what is older too");
  command
      .add_option("--limit", invocation.catchUp.limit, "How many people to show at most (default on a terminal: 10)")
      ->type_name("NUMBER")
      ->check(wholeNumber())
      ->excludes(all);
  command.add_flag("--explain", invocation.catchUp.isExplained,
                   "Also say why each stands where they stand, and of everyone else why they are not listed");
}

void addItemReadingCommands(CommandSet& commands, Invocation& invocation) {
  takeItem(commands.add({"show", "To see", "Show an item with its conversation and all else there is with the person",
                         "orvan show \"Ada Marsh\""},
                        [&invocation](const auto& context) { runShow(context, invocation.item); }),
           invocation.item);
  auto& open = commands.add(
      {"open", "To see", "Open the message behind an item in your mail program", "orvan open ada@hill.example"},
      [&invocation](const auto& context) { runOpen(context, invocation.open); });
  takeItem(open, invocation.open.item);
  open.add_flag("--print", invocation.open.isPrinted, "Print the message's mid: address instead");
}

void addReadingCommands(CommandSet& commands, Invocation& invocation) {
  addCatchUpCommand(commands, invocation);
  addItemReadingCommands(commands, invocation);
  takePerson(commands.add({"why", "To see", "Say why to get in touch with a person now", "orvan why \"Ada Marsh\""},
                          [&invocation](const auto& context) { runWhy(context, invocation.person); }),
             invocation.person);
  addPeopleCommands(commands);
  addContactCommands(commands);
  takePerson(commands.add({"bundle", "To see", "Show all evidence on one person", "orvan bundle ada@hill.example"},
                          [&invocation](const auto& context) { runBundle(context, invocation.person); }),
             invocation.person);
  commands.add({"bundles", "To see", "Show all evidence on everyone who has some", "orvan bundles --json"}, runBundles);
}

CLI::App& addItemCommand(CommandSet& commands, Invocation& invocation, const CommandText& text, ItemCommand kind) {
  auto& command = commands.add(
      text, [&invocation, kind](const auto& context) { runItemCommand(context, kind, invocation.decision); });
  takeItem(command, invocation.decision.item);
  command.add_flag("--yes,-y", invocation.decision.isConfirmed, "Do not ask first, as on a terminal");
  return command;
}

void addDecidingCommands(CommandSet& commands, Invocation& invocation) {
  addItemCommand(commands, invocation,
                 {"snooze", "To decide", "Hide an item for a while", "orvan snooze ada@hill.example --until 3d"},
                 ItemCommand::snooze)
      .add_option("--until", invocation.decision.until,
                  "A moment in whole seconds, a date, 3d, 2w, tomorrow, or a weekday")
      ->type_name("WHEN")
      ->required();
  addItemCommand(commands, invocation, {"dismiss", "To decide", "Hide an item for good", "orvan dismiss \"Ada Marsh\""},
                 ItemCommand::dismiss);
  addItemCommand(commands, invocation,
                 {"resolve", "To decide", "Mark an item's matter as settled", "orvan resolve ada@hill.example"},
                 ItemCommand::resolve);
  takePerson(
      commands.add({"records", "To decide", "Show what was decided about a person", "orvan records \"Ada Marsh\""},
                   [&invocation](const auto& context) { runRecords(context, invocation.person); }),
      invocation.person);
}

void addKeepingCommands(CommandSet& commands) {
  commands.add({"doctor", "To keep it in order", "Check key, store and file modes, and say what to do", "orvan doctor"},
               runDoctor);
  commands.add(
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

void run(const Invocation& invocation, const RunCommand& command) {
  const Instant asOf = asOfIn(invocation);
  Session session(settingsOf(invocation));
  const auto output = invocation.isJson ? OutputForm::json : OutputForm::human;
  try {
    command({session, asOf, output});
  } catch (const PersonNotFound& error) {
    // Whom the user may have meant is an answer to them. The error itself, which may end in a log, names nobody.
    if (output == OutputForm::human) {
      HumanOutput{}.choice(error.people());
    }
    session.finish();
    throw;
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

void addCommands(CommandSet& commands, Invocation& invocation) {
  addFirstCommands(commands, invocation);
  addSourcesCommands(commands);
  addRefreshCommand(commands);
  addReadingCommands(commands, invocation);
  addDecidingCommands(commands, invocation);
  addFollowUpCommands(commands);
  addRemindersCommands(commands);
  addHidingCommands(commands);
  addCorrectionCommands(commands);
  addOwnAddressCommands(commands);
  addForgettingCommands(commands);
  addKeepingCommands(commands);
  addBackupCommands(commands);
  addExportCommand(commands);
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
  addGlobalOptions(program, invocation);
  CommandSet commands(program);
  addCommands(commands, invocation);
  try {
    if (parse(program, {argv, static_cast<std::size_t>(argc)})) {
      run(invocation, commands.chosen());
    }
    finishOutput();
    return static_cast<int>(ExitCode::done);
  } catch (...) {
    std::cout.flush();
    return report(failureOfCurrentException());
  }
}

} // namespace orvan
