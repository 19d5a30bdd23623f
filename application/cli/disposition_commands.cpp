#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/confirmation.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/session/decision.h"
#include "application/session/item_lookup.h"
#include "application/session/reason_in_words.h"
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

bool isFinal(const AttentionItemAction& action) {
  return action.kind() != AttentionItemAction::Kind::snooze;
}

/// What the user may not have had before their eyes.
std::string warningFor(const Proposal& proposal) {
  switch (proposal.sight) {
    case Proposal::Sight::otherShown:
      return "The reason has changed since it was shown to you. ";
    case Proposal::Sight::neverShown:
      return "This reason was not shown to you yet. ";
    case Proposal::Sight::named:
    case Proposal::Sight::shown:
      break;
  }
  return "";
}

std::string questionFor(const AttentionItemAction& action) {
  switch (action.kind()) {
    case AttentionItemAction::Kind::dismiss:
      return "Dismiss it for good?";
    case AttentionItemAction::Kind::resolve:
      return "Mark it as settled for good?";
    case AttentionItemAction::Kind::snooze:
      break;
  }
  return "Snooze it until " + humanDateText(*action.until()) + "?";
}

/// Somebody at a terminal is asked before what cannot be taken back, and before a decision about a reason that they did
/// not see.
void askFirst(const CommandContext& context, const Proposal& proposal) {
  const auto warning = warningFor(proposal);
  if (!canAsk() || (warning.empty() && !isFinal(proposal.action))) {
    return;
  }
  if (!isConfirmed(printableText(proposal.item.displayName()) + ": " +
                   printableText(reasonInWords(proposal.item.whyNow())) + "\n" + warning +
                   questionFor(proposal.action))) {
    throw CommandFailure(ExitCode::failed, "Nothing was changed.");
  }
  // The answer may have taken its time.
  itemCalled(proposal.item.itemKey(), context.session, context.asOf);
}

std::string sentenceFor(const AttentionItemState& state, std::string_view name) {
  const auto of = [name](const std::string& done) { return done + ": " + printableText(name); };
  switch (state.kind()) {
    case AttentionItemState::Kind::snoozed:
      return of("Snoozed until " + humanDateText(*state.until()));
    case AttentionItemState::Kind::dismissed:
      return of("Dismissed for good");
    case AttentionItemState::Kind::resolved:
      return of("Settled for good");
    case AttentionItemState::Kind::active:
      break;
  }
  return of("Still on the list");
}

void tell(const Proposal& proposal, const Decision& decision) {
  const HumanOutput output;
  // The user is told rather than left to wonder.
  if (!decision.isAsAsked) {
    output.line("An earlier decision is final and stayed as it was:");
  }
  output.line(sentenceFor(decision.record.state(), proposal.item.displayName()));
  output.line("  " + printableText(reasonInWords(proposal.item.whyNow())));
  if (decision.isAsAsked && !isFinal(proposal.action)) {
    output.line("'orvan undo' takes that back.");
  }
}

} // namespace

void runItemCommand(const CommandContext& context, ItemCommand command, const DecisionArguments& arguments) {
  const auto action = actionFor(command, arguments.until, context.asOf);
  const auto proposal = propose(context.session, arguments.item, action, context.asOf);
  if (!arguments.isConfirmed) {
    askFirst(context, proposal);
  }
  const auto decision = decide(context.session, proposal, context.asOf);
  if (context.output == OutputForm::json) {
    printJson(toJson(decision.record));
  } else {
    tell(proposal, decision);
  }
  if (proposal.followUpID && decision.isAsAsked && isFinal(proposal.action)) {
    tell(context, withdrawReminder(context, *proposal.followUpID));
  }
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
