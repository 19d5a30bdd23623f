#include "application/cli/follow_up_commands.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "application/cli/command_failure.h"
#include "application/cli/confirmation.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/corrections/follow_up_actions.h"
#include "application/session/decision.h"
#include "application/session/follow_up_lookup.h"
#include "application/session/item_lookup.h"
#include "application/session/said_moment.h"

namespace orvan {
namespace {

struct FollowUpArguments {
  std::string whom;
  std::string when;
  std::optional<std::string> about;
};

Instant dueAtIn(const std::string& when, Instant asOf) {
  const auto dueAt = parseSaidMoment(when, asOf, UnsaidTime::morning);
  if (!dueAt) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "--on takes a day with or without a time (tomorrow 9:30, friday, 2026-12-01 14:00, 3d), a "
                         "time (18:00), a span (2h, 90m) or a moment (2026-12-01T14:00:00Z).");
  }
  return *dueAt;
}

void requireAcceptable(const NewFollowUp& followUp, Instant asOf) {
  const auto refusal = FollowUpScheduler::followUpRefusal(followUp.text, followUp.dueAt, asOf);
  if (refusal == FollowUpRefusal::emptyTitle) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "--about takes some words; leave it out to be reminded of the "
                         "person.");
  }
  if (refusal) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "That time has passed (" + humanMomentText(followUp.dueAt) + "); name one to come with --on.");
  }
}

/// The mail or meeting that an item's reason rests on; nothing when it rests on none.
std::optional<std::string> interactionBehind(const FoundItem& found, Session& session) {
  if (found.followUp) {
    return found.followUp->interactionID;
  }
  return session.readableStore().read([&](Connection& connection) {
    return orvan::interactionBehind(found.item.personKey(), found.item.whyNow().evidenceReferences(), connection);
  });
}

std::string nameOf(const std::string& personKey, Session& session) {
  const auto person = session.person(personKey);
  return person ? person->displayName() : personKey;
}

NewFollowUp followUpFor(const CommandContext& context, const FollowUpArguments& arguments) {
  NewFollowUp followUp{.personID = {}, .dueAt = dueAtIn(arguments.when, context.asOf), .text = {}, .interactionID = {}};
  if (isItemKey(arguments.whom)) {
    const auto found = itemCalled(arguments.whom, context.session, context.asOf);
    followUp.personID = found.item.personKey();
    followUp.interactionID = interactionBehind(found, context.session);
  } else {
    followUp.personID = context.session.personKeyOf(arguments.whom);
  }
  followUp.text = arguments.about.value_or("Get back to " + nameOf(followUp.personID, context.session));
  requireAcceptable(followUp, context.asOf);
  return followUp;
}

ListedFollowUp stored(const std::string& id, Session& session) {
  return session.readableStore().read([&](Connection& connection) { return followUpWithID(id, connection); }).value();
}

void print(const CommandContext& context, const ListedFollowUp& followUp, const std::string& done,
           const ReminderOutcome& reminder, bool canBeTakenBack) {
  if (context.output == OutputForm::json) {
    auto document = toJson(followUp);
    document["reminder"] = reminder.word;
    printJson(document);
  } else {
    const HumanOutput output;
    output.line(done + ": " + printableText(followUp.displayName));
    output.followUp(followUp);
    if (canBeTakenBack) {
      output.line("'orvan undo' takes that back.");
    }
  }
  tell(context, reminder);
}

void runAddFollowUp(const CommandContext& context, const FollowUpArguments& arguments) {
  const auto followUp = followUpFor(context, arguments);
  const auto id = context.session.writableStore().write(
      [&](Connection& connection) { return addFollowUp(followUp, context.asOf, connection); });
  const auto reminder = setReminder(context, id);
  print(context, stored(id, context.session), "Noted to follow up", reminder, true);
}

void runListFollowUps(const CommandContext& context, bool isAll) {
  const auto found = context.session.readableStore().read([isAll](Connection& connection) {
    return followUps(isAll ? FollowUpChoice::all : FollowUpChoice::scheduled, connection);
  });
  if (context.output == OutputForm::human) {
    HumanOutput{}.followUps(found, context.asOf);
    return;
  }
  auto document = Json::array();
  for (const auto& followUp : found) {
    document.push_back(toJson(followUp));
  }
  printJson(document);
}

/// Of what several go by, the user is shown each.
ListedFollowUp calledFollowUp(const CommandContext& context, const std::string& text, FollowUpState state) {
  try {
    return followUpCalled(text, state, context.session);
  } catch (const SeveralFollowUps& error) {
    if (context.output == OutputForm::human) {
      HumanOutput{}.followUps(error.followUps(), context.asOf);
    }
    throw;
  }
}

using ChangeFollowUp = bool (*)(const std::string& followUpID, Instant now, Connection& connection);

void change(const CommandContext& context, const ListedFollowUp& followUp, ChangeFollowUp act) {
  const bool isChanged = context.session.writableStore().write(
      [&](Connection& connection) { return act(followUp.id, context.asOf, connection); });
  if (!isChanged) {
    throw Error(SessionError::followUpElsewhere, "changing a follow-up");
  }
}

void runComplete(const CommandContext& context, const std::string& text) {
  const auto followUp = calledFollowUp(context, text, FollowUpState::scheduled);
  change(context, followUp, completeFollowUp);
  const auto reminder = withdrawReminder(context, followUp.id);
  print(context, stored(followUp.id, context.session), "Done", reminder, true);
}

void runCancel(const CommandContext& context, const std::string& text) {
  const auto followUp = calledFollowUp(context, text, FollowUpState::scheduled);
  change(context, followUp, cancelFollowUp);
  const auto reminder = withdrawReminder(context, followUp.id);
  print(context, stored(followUp.id, context.session), "Cancelled", reminder, true);
}

void runReopen(const CommandContext& context, const std::string& text) {
  const auto followUp = calledFollowUp(context, text, FollowUpState::completed);
  change(context, followUp, reopenFollowUp);
  // One whose time has passed is on the list, and reminds nobody anew.
  const auto reminder = followUp.dueAt > context.asOf ? setReminder(context, followUp.id) : ReminderOutcome{"due", ""};
  print(context, stored(followUp.id, context.session), "Open again", reminder, true);
}

struct ResolveArguments {
  std::string which;
  bool isConfirmed = false;
};

void runResolve(const CommandContext& context, const ResolveArguments& arguments) {
  const auto followUp = calledFollowUp(context, arguments.which, FollowUpState::scheduled);
  if (!followUp.item) {
    throw Error(SessionError::noReasonNow, "resolving a follow-up");
  }
  const auto proposal =
      propose(context.session, followUp.item->itemKey(), AttentionItemAction::resolve(), context.asOf);
  const auto question = printableText(followUp.displayName + ": " + followUp.said.value_or("a follow-up")) +
                        "\nMark it as settled for good?";
  if (!arguments.isConfirmed && canAsk() && !isConfirmed(question)) {
    throw CommandFailure(ExitCode::failed, "Nothing was changed.");
  }
  decide(context.session, proposal, context.asOf);
  const auto reminder = withdrawReminder(context, followUp.id);
  print(context, stored(followUp.id, context.session), "Settled for good", reminder, false);
}

void addAdd(CommandSet& commands, CLI::App& followUp) {
  const auto arguments = std::make_shared<FollowUpArguments>();
  auto& add =
      commands.addTo(followUp,
                     {"add", nullptr, "Be reminded of a person, or of what an item is about",
                      "orvan follow-up add \"Ada Marsh\" --on \"tomorrow 9:30\" --about \"call about the lease\""},
                     [arguments](const auto& context) { runAddFollowUp(context, *arguments); });
  add.add_option("WHOM", arguments->whom, "A person's key, name or address, or an item's key")
      ->type_name("")
      ->required()
      ->check(notEmpty());
  add.add_option("--on", arguments->when,
                 "A day (friday, 2026-12-01, 3d) with or without a time, a time, a span (2h), or a moment; 9:00 on a "
                 "day without a time")
      ->type_name("WHEN")
      ->required();
  add.add_option("--about", arguments->about, "What the reminder is to say")->type_name("TEXT");
}

void addChange(CommandSet& commands, CLI::App& followUp, const CommandText& text,
               void (*run)(const CommandContext& context, const std::string& which)) {
  const auto which = std::make_shared<std::string>();
  commands.addTo(followUp, text, [which, run](const auto& context) { run(context, *which); })
      .add_option("FOLLOW-UP", *which, "An id that 'orvan follow-up list' gives, or a person who has only one")
      ->type_name("")
      ->required()
      ->check(notEmpty());
}

void addResolve(CommandSet& commands, CLI::App& followUp) {
  const auto arguments = std::make_shared<ResolveArguments>();
  auto& resolve = commands.addTo(
      followUp,
      {"resolve", nullptr, "Mark a follow-up's matter as settled for good", "orvan follow-up resolve \"Ada Marsh\""},
      [arguments](const auto& context) { runResolve(context, *arguments); });
  resolve.add_option("FOLLOW-UP", arguments->which, "An id that 'orvan follow-up list' gives, or a person")
      ->type_name("")
      ->required()
      ->check(notEmpty());
  resolve.add_flag("--yes,-y", arguments->isConfirmed, "Do not ask first, as on a terminal");
}

} // namespace

void addFollowUpCommands(CommandSet& commands) {
  const auto isAll = std::make_shared<bool>(false);
  auto& followUp = commands.add({"follow-up", "To be reminded", "List what you want to be reminded of, or add to it",
                                 "orvan follow-up add \"Ada Marsh\" --on friday"},
                                [isAll](const auto& context) { runListFollowUps(context, *isAll); });
  addAdd(commands, followUp);
  commands
      .addTo(followUp, {"list", nullptr, "List what you want to be reminded of", "orvan follow-up list --all"},
             [isAll](const auto& context) { runListFollowUps(context, *isAll); })
      .add_flag("--all", *isAll, "Also what was completed or cancelled");
  addChange(commands, followUp,
            {"complete", nullptr, "Say that a follow-up is done", "orvan follow-up complete \"Ada Marsh\""},
            runComplete);
  addChange(commands, followUp, {"cancel", nullptr, "Give a follow-up up", "orvan follow-up cancel 1a2b3c4d"},
            runCancel);
  addChange(commands, followUp,
            {"reopen", nullptr, "Schedule a completed follow-up again", "orvan follow-up reopen 1a2b3c4d"}, runReopen);
  addResolve(commands, followUp);
}

} // namespace orvan
