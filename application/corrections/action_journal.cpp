#include "application/corrections/action_journal.h"

#include <algorithm>
#include <array>
#include <ranges>
#include <span>
#include <stdexcept>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

using Json = nlohmann::json;

constexpr std::array kinds{UserActionKind::snooze,
                           UserActionKind::dismiss,
                           UserActionKind::resolve,
                           UserActionKind::merge,
                           UserActionKind::split,
                           UserActionKind::rename,
                           UserActionKind::hide,
                           UserActionKind::unhide,
                           UserActionKind::wrong,
                           UserActionKind::followUpAdd,
                           UserActionKind::followUpComplete,
                           UserActionKind::followUpCancel,
                           UserActionKind::followUpReopen};

constexpr const char* selectAction = R"sql(
SELECT a.number, a.kind, a.person_id, p.display_name, a.happened_at, a.undone_at, a.detail
FROM user_action a
LEFT JOIN person p ON p.id = a.person_id
)sql";

/// What is read of one action.
struct StoredAction {
  JournalEntry entry;
  std::vector<Change> changes;
};

std::optional<std::string> copied(std::optional<std::string_view> text) {
  return text ? std::optional<std::string>{*text} : std::nullopt;
}

JournalEntry::State stateOf(UserActionKind kind, bool isUndone) {
  if (isFinal(kind)) {
    return JournalEntry::State::final;
  }
  return isUndone ? JournalEntry::State::undone : JournalEntry::State::standing;
}

/// Throws what nlohmann::json throws, or std::out_of_range.
StoredAction parsed(const Query& row) {
  const auto kind = std::ranges::find(kinds, row.text(Column{1}), [](auto each) { return caseName(each); });
  const auto happenedAt = parseInternetDateTime(row.text(Column{4}));
  if (kind == kinds.end() || !happenedAt) {
    throw std::out_of_range("no action that is known here");
  }
  const auto detail = Json::parse(row.text(Column{6}));
  StoredAction action{
      {row.integer(Column{0}), *kind, copied(row.optionalText(Column{2})), copied(row.optionalText(Column{3})),
       *happenedAt, detail.at("words").get<std::string>(), stateOf(*kind, !row.holdsNull(Column{5}))},
      {}};
  for (const auto& change : detail.at("changes")) {
    action.changes.push_back(changeIn(change));
  }
  return action;
}

std::optional<StoredAction> actionIn(const Query& row) {
  try {
    return parsed(row);
  } catch (const Json::exception&) {
    return std::nullopt;
  } catch (const std::out_of_range&) {
    return std::nullopt;
  }
}

std::string oldestKept(Instant now) {
  return formatInternetDateTime(instantBySubtractingDays(now, actionsKeptDays));
}

StoredAction actionNumbered(std::int64_t number, Connection& connection) {
  auto row = connection.query(std::string{selectAction} + "WHERE a.number = ?", number);
  if (!row.next()) {
    throw Error(ActionJournalError::actionUnknown, "taking an action back");
  }
  auto action = actionIn(row);
  if (!action) {
    throw Error(ActionJournalError::actionUnreadable, "taking an action back");
  }
  return *std::move(action);
}

void requireCanBeTakenBack(const JournalEntry& entry, Instant now) {
  const auto refuse = [](ActionJournalError error) { throw Error(error, "taking an action back"); };
  if (entry.state == JournalEntry::State::final) {
    refuse(ActionJournalError::actionFinal);
  }
  if (entry.state == JournalEntry::State::undone) {
    refuse(ActionJournalError::takenBackAlready);
  }
  if (formatInternetDateTime(entry.happenedAt) < oldestKept(now)) {
    refuse(ActionJournalError::actionTooOld);
  }
}

StoredAction latestToTakeBack(Instant now, Connection& connection) {
  auto rows = connection.query(
      std::string{selectAction} + "WHERE a.undone_at IS NULL AND a.happened_at >= ? ORDER BY a.number DESC",
      oldestKept(now));
  while (rows.next()) {
    auto action = actionIn(rows);
    if (action && !isFinal(action->entry.kind)) {
      return *std::move(action);
    }
  }
  throw Error(ActionJournalError::nothingToTakeBack, "taking an action back");
}

/// Whether both decide the same of a row. A row that came or went is decided as a whole.
bool concernsTheSame(const Change& change, const Change& other) {
  if (change.table != other.table || change.key != other.key) {
    return false;
  }
  const auto isWhole = [](const Change& each) { return each.before.is_null() || each.after.is_null(); };
  return isWhole(change) || isWhole(other) || std::ranges::any_of(change.after.items(), [&](const auto& column) {
           return other.after.contains(column.key());
         });
}

/// The latest action after `number` that changed the same and stands.
std::optional<JournalEntry> laterActionOn(std::span<const Change> changes, std::int64_t number,
                                          Connection& connection) {
  auto rows = connection.query(
      std::string{selectAction} + "WHERE a.number > ? AND a.undone_at IS NULL ORDER BY a.number DESC", number);
  while (rows.next()) {
    const auto later = actionIn(rows);
    const bool isOnThem =
        later && std::ranges::any_of(later->changes, [&](const Change& change) {
          return std::ranges::any_of(changes, [&](const Change& other) { return concernsTheSame(change, other); });
        });
    if (isOnThem) {
      return later->entry;
    }
  }
  return std::nullopt;
}

void requireAsLeft(const StoredAction& action, Connection& connection) {
  std::vector<Change> changedSince;
  std::ranges::copy_if(action.changes, std::back_inserter(changedSince),
                       [&](const Change& change) { return !isAsLeft(change, connection); });
  if (!changedSince.empty()) {
    throw ChangedSince(laterActionOn(changedSince, action.entry.number, connection));
  }
}

} // namespace

std::string_view caseName(UserActionKind kind) noexcept {
  switch (kind) {
    case UserActionKind::snooze:
      return "snooze";
    case UserActionKind::dismiss:
      return "dismiss";
    case UserActionKind::resolve:
      return "resolve";
    case UserActionKind::merge:
      return "merge";
    case UserActionKind::split:
      return "split";
    case UserActionKind::rename:
      return "rename";
    case UserActionKind::hide:
      return "hide";
    case UserActionKind::unhide:
      return "unhide";
    case UserActionKind::wrong:
      return "wrong";
    case UserActionKind::followUpAdd:
      return "followUpAdd";
    case UserActionKind::followUpComplete:
      return "followUpComplete";
    case UserActionKind::followUpCancel:
      return "followUpCancel";
    case UserActionKind::followUpReopen:
      return "followUpReopen";
  }
  return "unknown";
}

bool isFinal(UserActionKind kind) noexcept {
  return kind == UserActionKind::dismiss || kind == UserActionKind::resolve;
}

std::string_view caseName(JournalEntry::State state) noexcept {
  switch (state) {
    case JournalEntry::State::standing:
      return "standing";
    case JournalEntry::State::undone:
      return "undone";
    case JournalEntry::State::final:
      return "final";
  }
  return "unknown";
}

ChangedSince::ChangedSince(std::optional<JournalEntry> by)
    : Error(ActionJournalError::changedSince, "taking an action back"), by_(std::move(by)) {}

std::int64_t recordAction(const UserAction& action, Instant now, Connection& connection) {
  Json changes = Json::array();
  for (const auto& change : action.changes) {
    changes.push_back(toJson(change));
  }
  const Json detail{{"words", action.words}, {"changes", std::move(changes)}};
  const auto number = connection.fetchOptionalInteger(
      "INSERT INTO user_action (kind, person_id, happened_at, detail) VALUES (?, ?, ?, ?) RETURNING number",
      caseName(action.kind), action.personID, formatInternetDateTime(now),
      detail.dump(-1, ' ', false, Json::error_handler_t::replace));
  return number.value();
}

std::vector<JournalEntry> actionHistory(Instant now, Connection& connection) {
  std::vector<JournalEntry> entries;
  auto rows =
      connection.query(std::string{selectAction} + "WHERE a.happened_at >= ? ORDER BY a.number DESC", oldestKept(now));
  while (rows.next()) {
    if (auto action = actionIn(rows)) {
      entries.push_back(std::move(action->entry));
    }
  }
  return entries;
}

TakenBack takeBackAction(std::optional<std::int64_t> number, Instant now, Connection& connection) {
  auto action = number ? actionNumbered(*number, connection) : latestToTakeBack(now, connection);
  requireCanBeTakenBack(action.entry, now);
  requireAsLeft(action, connection);
  // Rows that refer to each other may come in either order.
  connection.execute("PRAGMA defer_foreign_keys = ON");
  for (const auto& change : action.changes | std::views::reverse) {
    takeBack(change, connection);
  }
  connection.execute("UPDATE user_action SET undone_at = ? WHERE number = ?", formatInternetDateTime(now),
                     action.entry.number);
  action.entry.state = JournalEntry::State::undone;
  return {std::move(action.entry), std::move(action.changes)};
}

} // namespace orvan
