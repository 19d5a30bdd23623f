#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/corrections/action_journal_error.h"
#include "application/corrections/change.h"

namespace orvan {

/// What the user did, in order, each action with what it changed, so that it can be taken back. Everything here runs
/// within the caller's transaction and throws StoreError.

enum class UserActionKind {
  snooze,
  dismiss,
  resolve,
  merge,
  split,
  rename,
  hide,
  unhide,
  wrong,
  followUpAdd,
  followUpComplete,
  followUpCancel,
  followUpReopen,
};

/// The name of the case.
std::string_view caseName(UserActionKind kind) noexcept;

/// Whether an action of that kind stands for good: decisions that the library itself takes for final.
bool isFinal(UserActionKind kind) noexcept;

/// How long the journal tells of an action, and lets it be taken back.
inline constexpr std::int64_t actionsKeptDays = 30;

/// An action before it is written down. `words` say what was done, as a clause without whom it concerns: "snoozed until
/// Mar 13, 2026: There's a conversation waiting on your reply." It may hold names and other texts of the user's.
struct UserAction {
  UserActionKind kind;
  /// Whom it concerns; nothing for one that concerns a source.
  std::optional<std::string> personID;
  std::string words;
  std::vector<Change> changes;
};

/// Writes the action down, in the transaction that did it, and gives its number.
std::int64_t recordAction(const UserAction& action, Instant now, Connection& connection);

/// An action as the journal tells of it.
struct JournalEntry {
  enum class State { standing, undone, final };

  std::int64_t number;
  UserActionKind kind;
  std::optional<std::string> personID;
  /// What the person is called now; nothing when there is no such person any more.
  std::optional<std::string> personName;
  Instant happenedAt;
  std::string words;
  State state;
};

/// The name of the case.
std::string_view caseName(JournalEntry::State state) noexcept;

/// The actions of the last 30 days, the newest first. What cannot be read is left out.
std::vector<JournalEntry> actionHistory(Instant now, Connection& connection);

/// Thrown with ActionJournalError::changedSince.
class ChangedSince final : public Error {
 public:
  explicit ChangedSince(std::optional<JournalEntry> by);

  /// The user's latest action that changed the same; nothing when no action did, as when an import found out more.
  const std::optional<JournalEntry>& by() const noexcept { return by_; }

 private:
  std::optional<JournalEntry> by_;
};

/// An action that was taken back, and what it had changed.
struct TakenBack {
  JournalEntry entry;
  std::vector<Change> changes;
};

/// Takes back the action of that number, or the latest that can be taken back and was not, and gives it. Everything
/// it changed is then as it was before; what has changed since otherwise is left alone, and no consequences are drawn:
/// undoAction() does both.
///
/// Throws Error with an ActionJournalError, or a ChangedSince, and changes nothing then.
TakenBack takeBackAction(std::optional<std::int64_t> number, Instant now, Connection& connection);

} // namespace orvan
