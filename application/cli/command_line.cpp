#include "application/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <functional>
#include <iostream>
#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
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
  bool isExplained = false;
  std::string person;
  std::string text;
  std::string item;
  std::string until;
  ImportArguments import;
  std::function<void(const CommandContext&)> run;
};

/// An empty value is a slip, such as a variable that is not set, and must not stand for the default.
CLI::Validator notEmpty() {
  return {[](const std::string& value) { return value.empty() ? "takes a value" : ""; }, ""};
}

CLI::Validator wholeNumber() {
  return {[](const std::string& value) {
            return value.find_first_not_of("0123456789") == std::string::npos && !value.empty()
                       ? ""
                       : "takes a number from 0 upwards";
          },
          ""};
}

CLI::App* addCommand(CLI::App& program, Invocation& invocation, const std::string& name, const std::string& about,
                     std::function<void(const CommandContext&)> run) {
  auto* command = program.add_subcommand(name, about);
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
  program.add_option("--max-people", invocation.maxPeople, "How many people are looked at, in key order")
      ->type_name("NUMBER")
      ->check(wholeNumber())
      ->capture_default_str();
  program.add_flag("--json", invocation.isJson, "Print one JSON document instead of text");
}

void addImportCommand(CLI::App& program, Invocation& invocation) {
  auto* command = addCommand(program, invocation, "import", "Bring in mail and calendars; safe to repeat",
                             [&invocation](const auto& context) { runImport(context, invocation.import); });
  command->add_option("--me", invocation.import.ownAddresses, "Your own mail addresses (remembered)")
      ->type_name("ADDRESS")
      ->check(notEmpty());
  command->add_option("--mbox", invocation.import.mboxes, "An mbox file")->type_name("FILE")->check(notEmpty());
  command->add_option("--maildir", invocation.import.maildirs, "A Maildir folder")
      ->type_name("FOLDER")
      ->check(notEmpty());
  command->add_option("--ics", invocation.import.calendars, "An iCalendar file")->type_name("FILE")->check(notEmpty());
}

void addReadingCommands(CLI::App& program, Invocation& invocation) {
  addCommand(program, invocation, "people", "List the people you deal with",
             [&invocation](const auto& context) { runPeople(context, invocation.text); })
      ->add_option("TEXT", invocation.text, "A part of a name or address: list only who has it")
      ->check(notEmpty());
  addCommand(program, invocation, "bundle", "Show all evidence on one person",
             [&invocation](const auto& context) { runBundle(context, invocation.person); })
      ->add_option("PERSON", invocation.person, "A person's key, name or address")
      ->required()
      ->check(notEmpty());
  addCommand(program, invocation, "bundles", "Show all evidence on everyone who has some", runBundles);
  addCommand(program, invocation, "why", "Say why to get in touch with a person now",
             [&invocation](const auto& context) { runWhy(context, invocation.person); })
      ->add_option("PERSON", invocation.person, "A person's key, name or address")
      ->required()
      ->check(notEmpty());
  addCommand(program, invocation, "catch-up", "List whom to get back in touch with now, and why",
             [&invocation](const auto& context) {
               runCatchUp(context, invocation.isExplained ? Explanation::everyone : Explanation::none);
             })
      ->add_flag("--explain", invocation.isExplained, "Also say of everyone else why they are not listed");
}

CLI::App* addItemCommand(CLI::App& program, Invocation& invocation, const std::string& name, const std::string& about,
                         ItemCommand kind) {
  auto* command = addCommand(program, invocation, name, about, [&invocation, kind](const auto& context) {
    runItemCommand(context, kind, invocation.item, invocation.until);
  });
  command->add_option("ITEM", invocation.item, "An item's key, or a person's key, name or address")
      ->required()
      ->check(notEmpty());
  return command;
}

void addDecidingCommands(CLI::App& program, Invocation& invocation) {
  addItemCommand(program, invocation, "snooze", "Hide an item for a while", ItemCommand::snooze)
      ->add_option("--until", invocation.until, "A moment in whole seconds, a date, 3d, 2w, tomorrow, or a weekday")
      ->type_name("WHEN")
      ->required();
  addItemCommand(program, invocation, "dismiss", "Hide an item for good", ItemCommand::dismiss);
  addItemCommand(program, invocation, "resolve", "Mark an item's matter as settled", ItemCommand::resolve);
  addCommand(program, invocation, "records", "Show what was decided about a person",
             [&invocation](const auto& context) { runRecords(context, invocation.person); })
      ->add_option("PERSON", invocation.person, "A person's key, name or address")
      ->required()
      ->check(notEmpty());
}

void addKeepingCommands(CLI::App& program, Invocation& invocation) {
  addCommand(program, invocation, "doctor", "Check key, store and file modes, and say what to do", runDoctor);
  addCommand(program, invocation, "checkpoint", "Move the write-ahead log into the store file", runCheckpoint);
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

/// What the parser found: a call for help or for the version, or a fault in the words.
void answer(const CLI::App& program, const CLI::ParseError& found) {
  if (found.get_exit_code() != 0) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         printableText(found.what()) + "; 'orvan --help' tells what can be said.");
  }
  program.exit(found);
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

} // namespace

int runCommandLine(int argc, const char* const* argv) {
  Invocation invocation;
  CLI::App program{"Whom to get back in touch with now, and why.", "orvan"};
  program.require_subcommand(1);
  program.set_version_flag("--version", std::string{"orvan "} + ORVAN_VERSION);
  addGlobalOptions(program, invocation);
  addCommand(program, invocation, "init", "Make the key, if there is none, and an empty encrypted store", runInit);
  addImportCommand(program, invocation);
  addReadingCommands(program, invocation);
  addDecidingCommands(program, invocation);
  addKeepingCommands(program, invocation);
  try {
    try {
      program.parse(argc, argv);
      run(invocation);
    } catch (const CLI::ParseError& found) {
      answer(program, found);
    }
    finishOutput();
    return static_cast<int>(ExitCode::done);
  } catch (...) {
    std::cout.flush();
    return report(failureOfCurrentException());
  }
}

} // namespace orvan
