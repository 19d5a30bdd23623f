#include "application/cli/correction_commands.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/corrections/taking_back.h"

namespace orvan {
namespace {

Json toJson(const JournalEntry& entry) {
  const auto textOrNull = [](const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); };
  return {{"number", entry.number},
          {"kind", caseName(entry.kind)},
          {"happenedAt", formatInternetDateTime(entry.happenedAt)},
          {"personKey", textOrNull(entry.personID)},
          {"displayName", textOrNull(entry.personName)},
          {"words", entry.words},
          {"state", caseName(entry.state)}};
}

/// "Ada Marsh, snoozed until Mar 13, 2026: There's a conversation waiting on your reply."
std::string inWords(const JournalEntry& entry) {
  const auto whom = entry.personName ? *entry.personName + ", " : std::string{};
  return printableText(whom + entry.words);
}

std::string noteOn(JournalEntry::State state) {
  switch (state) {
    case JournalEntry::State::undone:
      return " (taken back)";
    case JournalEntry::State::final:
      return " (final)";
    case JournalEntry::State::standing:
      break;
  }
  return "";
}

void printHistory(const std::vector<JournalEntry>& entries) {
  const HumanOutput output;
  std::size_t width = 0;
  for (const auto& entry : entries) {
    width = std::max(width, std::to_string(entry.number).size());
  }
  for (const auto& entry : entries) {
    auto number = std::to_string(entry.number);
    number.insert(0, width - number.size(), ' ');
    output.line(number + "  " + humanMomentText(entry.happenedAt) + "  " + inWords(entry) + noteOn(entry.state));
  }
  if (entries.empty()) {
    output.line("You did nothing within the last " + std::to_string(actionsKeptDays) + " days.");
  }
}

void runHistory(const CommandContext& context) {
  const auto entries = context.session.readableStore().read(
      [&context](Connection& connection) { return actionHistory(context.asOf, connection); });
  if (context.output == OutputForm::human) {
    printHistory(entries);
    return;
  }
  auto document = Json::array();
  for (const auto& entry : entries) {
    document.push_back(toJson(entry));
  }
  printJson(document);
}

/// Whether what was taken back decides which reminders there are to be.
bool concernsReminders(UserActionKind kind, Session& session) {
  switch (kind) {
    case UserActionKind::followUpAdd:
    case UserActionKind::followUpComplete:
    case UserActionKind::followUpCancel:
    case UserActionKind::followUpReopen:
      return true;
    case UserActionKind::hide:
    case UserActionKind::unhide:
      return hasFollowUps(session);
    default:
      return false;
  }
}

void runUndo(const CommandContext& context, std::optional<std::int64_t> number) {
  const auto entry = context.session.writableStore().write(
      [&](Connection& connection) { return undoAction(number, context.asOf, connection); });
  if (context.output == OutputForm::json) {
    printJson(toJson(entry));
  } else {
    HumanOutput{}.line("Taken back: " + std::to_string(entry.number) + "  " + inWords(entry));
  }
  if (concernsReminders(entry.kind, context.session)) {
    tell(context, bringRemindersInLine(context));
  }
}

void addJournalCommands(CommandSet& commands) {
  commands.add({"history", "To take back", "List what you did in the last 30 days", "orvan history"}, runHistory);
  const auto number = std::make_shared<std::optional<std::int64_t>>();
  commands
      .add({"undo", "To take back", "Take back the last thing you did, or one by its number", "orvan undo"},
           [number](const auto& context) { runUndo(context, *number); })
      .add_option("NUMBER", *number, "The number that 'orvan history' gives")
      ->type_name("")
      ->check(wholeNumber());
}

} // namespace

void addCorrectionCommands(CommandSet& commands) {
  addJournalCommands(commands);
}

} // namespace orvan
