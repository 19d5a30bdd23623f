#include <algorithm>
#include <optional>

#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/snooze_end.h"

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
  if (*end <= asOf) {
    throw CommandFailure(ExitCode::failed, "A snooze has to end in the future; nothing was changed.");
  }
  return AttentionItemAction::snooze(*end);
}

/// The person key that an item key begins with, behind its length: "4:p-42|10:openThread|...".
std::optional<std::string> personKeyIn(const std::string& itemKey) {
  const auto colon = itemKey.find(':');
  if (colon == std::string::npos || colon == 0 || colon > 9 ||
      !std::ranges::all_of(itemKey.substr(0, colon), [](char digit) { return digit >= '0' && digit <= '9'; })) {
    return std::nullopt;
  }
  const auto length = std::stoul(itemKey.substr(0, colon));
  const bool isItemKey = itemKey.size() > colon + 1 + length && itemKey[colon + 1 + length] == '|';
  return isItemKey ? std::optional{itemKey.substr(colon + 1, length)} : std::nullopt;
}

/// The item that stands for the person now, whatever its state.
AttentionCatchUpItem currentItem(Workspace& workspace, const std::string& personKey) {
  const auto& people = workspace.people();
  const auto person = std::ranges::find(people, personKey, &ProjectedPerson::personKey);
  if (person != people.end()) {
    auto item = itemOf(*person, workspace.bundle(personKey), workspace.settings().asOf);
    if (item) {
      return std::move(*item);
    }
  }
  throw CommandFailure(ExitCode::failed,
                       "There is no reason to get in touch with that person now; 'orvan catch-up' shows the list.");
}

/// An item key names one reason. When the person has another one by now, the user decided about something that no
/// longer stands.
void revalidate(const AttentionCatchUpItem& current, const std::string& itemKey, Workspace& workspace) {
  const auto bundle = workspace.bundle(current.personKey());
  if (!AttentionCatchUpSelector::revalidate(itemKey, current.personKey(), current.whyNow().evidenceReferences(),
                                            bundle)) {
    std::string now = current.whyNow().headline();
    for (const auto& line : current.whyNow().evidenceLines()) {
      now += " " + line;
    }
    throw CommandFailure(ExitCode::failed, "The reason has changed meanwhile, so nothing was done. It is now: " + now);
  }
}

AttentionItemState::Kind stateAfter(ItemCommand command) {
  switch (command) {
    case ItemCommand::snooze:
      return AttentionItemState::Kind::snoozed;
    case ItemCommand::dismiss:
      return AttentionItemState::Kind::dismissed;
    case ItemCommand::resolve:
      return AttentionItemState::Kind::resolved;
  }
  return AttentionItemState::Kind::active;
}

/// A final decision stays whatever is asked for after it; the user is told rather than left to wonder.
void printRecord(const CommandContext& context, ItemCommand command, const AttentionItemDispositionRecord& record) {
  if (context.output == OutputForm::json) {
    printJson(toJson(record));
    return;
  }
  if (record.state().kind() != stateAfter(command)) {
    HumanOutput{}.line("An earlier decision is final and stayed as it was:");
  }
  HumanOutput{}.record(record);
}

} // namespace

void runItemCommand(const CommandContext& context, ItemCommand command, const std::string& item,
                    const std::string& until) {
  auto& workspace = context.workspace;
  const Instant asOf = workspace.settings().asOf;
  const auto action = actionFor(command, until, asOf);
  workspace.openForDeciding();
  const auto keyedPerson = personKeyIn(item);
  const auto current = currentItem(workspace, keyedPerson ? *keyedPerson : workspace.personKeyOf(item));
  if (keyedPerson) {
    revalidate(current, item, workspace);
  }
  auto& store = workspace.dispositions();
  printRecord(context, command, waitFor(store.executor(), store.apply(current, action, asOf)));
}

void runRecords(const CommandContext& context, const std::string& person) {
  const auto records = context.workspace.records(context.workspace.personKeyOf(person));
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
