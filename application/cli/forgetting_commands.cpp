#include "application/cli/forgetting_commands.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/confirmation.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/corrections/forgetting.h"
#include "application/store/application_store.h"

namespace orvan {
namespace {

struct ForgettingArguments {
  std::string person;
  /// Nobody is asked.
  bool isSure = false;
};

std::string joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const auto& text : texts) {
    all += (all.empty() ? "" : ", ") + printableText(text);
  }
  return all;
}

/// What goes and what stays, a line for each.
std::vector<std::string> inWords(const TracesOfPerson& traces) {
  std::vector<std::string> lines{"To forget " + printableText(traces.displayName) + " is to delete for good:"};
  if (!traces.addresses.empty()) {
    lines.push_back("  the name, and " + joined(traces.addresses));
  }
  lines.push_back("  " + counted(traces.mails, "mail", "mails") + " and " +
                  counted(traces.meetings, "meeting", "meetings") + ", with what they asked");
  lines.push_back("  " + counted(traces.decisions, "decision", "decisions") + " of yours and " +
                  counted(traces.followUps, "follow-up", "follow-ups") + ", with your history of them");
  if (traces.shared > 0) {
    lines.push_back("What is with others too stays, without them: " +
                    counted(traces.shared, "mail or meeting.", "mails and meetings."));
  }
  lines.emplace_back("No import brings them back. Your mail stays where it is, and so do backups of the store.");
  return lines;
}

void requireConsent(const TracesOfPerson& traces, OutputForm output) {
  std::string question;
  for (const auto& line : inWords(traces)) {
    if (output == OutputForm::human) {
      HumanOutput{}.line(line);
    } else {
      question += line + "\n";
    }
  }
  if (!canAsk()) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "Nothing was deleted: nobody is there to be asked. Say with --yes that you mean it.");
  }
  if (!isConfirmed(question + "Forget them?")) {
    throw CommandFailure(ExitCode::failed, "Nothing was deleted.");
  }
}

const TracesOfPerson& required(const std::optional<TracesOfPerson>& traces) {
  if (!traces) {
    throw CommandFailure(ExitCode::failed,
                         "Those are addresses of your own; 'orvan me remove ADDRESS' says that one is not.");
  }
  return *traces;
}

void print(const TracesOfPerson& forgotten, bool isLogEmptied, OutputForm form) {
  if (form == OutputForm::json) {
    printJson({{"personKey", forgotten.personKey},
               {"displayName", forgotten.displayName},
               {"addresses", forgotten.addresses},
               {"mails", forgotten.mails},
               {"meetings", forgotten.meetings},
               {"shared", forgotten.shared},
               {"decisions", forgotten.decisions},
               {"followUps", forgotten.followUps},
               {"logEmptied", isLogEmptied}});
    return;
  }
  const HumanOutput output;
  output.line("Forgotten: " + counted(forgotten.mails, "mail", "mails") + ", " +
              counted(forgotten.meetings, "meeting", "meetings") + ", " +
              counted(forgotten.decisions, "decision", "decisions") + " and all else of " +
              printableText(forgotten.displayName) + ".");
  if (!isLogEmptied) {
    output.line(
        "Another program uses the store, and its write-ahead log still holds some of that, encrypted; close it "
        "and run 'orvan checkpoint'.");
  }
}

void runForget(const CommandContext& context, const ForgettingArguments& arguments) {
  auto& store = context.session.writableStore();
  const auto personKey = context.session.personKeyOf(arguments.person);
  const auto traces = store.read([&](Connection& connection) { return tracesOf(personKey, connection); });
  required(traces);
  if (!arguments.isSure) {
    requireConsent(*traces, context.output);
  }
  const auto forgotten = store.write(
      [&](Connection& connection) { return forget(personKey, formatInternetDateTime(context.asOf), connection); });
  print(required(forgotten), ApplicationStore::checkpoint(store), context.output);
  if (forgotten->followUps > 0) {
    tell(context, bringRemindersInLine(context));
  }
}

} // namespace

void addForgettingCommands(CommandSet& commands) {
  const auto arguments = std::make_shared<ForgettingArguments>();
  auto& forget =
      commands.add({"forget", "To decide", "Delete all there is of a person, for good", "orvan forget \"Ada Marsh\""},
                   [arguments](const auto& context) { runForget(context, *arguments); });
  takePerson(forget, arguments->person);
  forget.add_flag("--yes,-y", arguments->isSure, "Do not ask");
}

} // namespace orvan
