#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/session/decision.h"
#include "application/session/snooze_end.h"

namespace orvan {
namespace {

AttentionItemAction actionFor(ItemCommand command, const std::string& until, Instant asOf) {
  switch (command) {
    case ItemCommand::dismiss:
      return AttentionItemAction::dismiss();
    case ItemCommand::resolve:
      return AttentionItemAction::resolve();
    case ItemCommand::snooze:
      break;
  }
  const auto end = parseSnoozeEnd(until, asOf);
  if (!end) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "--until takes a moment (2026-03-04T09:15:00Z), a date (2026-03-04), a span (3d, 2w), "
                         "'tomorrow' or a weekday.");
  }
  return AttentionItemAction::snooze(*end);
}

} // namespace

void runItemCommand(const CommandContext& context, ItemCommand command, const std::string& item,
                    const std::string& until) {
  const auto decision = decide(context.session, item, actionFor(command, until, context.asOf), context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(decision.record));
    return;
  }
  // The user is told rather than left to wonder.
  if (!decision.isAsAsked) {
    HumanOutput{}.line("An earlier decision is final and stayed as it was:");
  }
  HumanOutput{}.record(decision.record);
}

void runRecords(const CommandContext& context, const std::string& person) {
  const auto records = context.session.records(context.session.personKeyOf(person));
  if (context.output == OutputForm::json) {
    printJson(toJson(records));
    return;
  }
  const HumanOutput output;
  for (const auto& record : records) {
    output.record(record);
  }
  if (records.empty()) {
    output.line("Nothing was decided about that person.");
  }
}

} // namespace orvan
