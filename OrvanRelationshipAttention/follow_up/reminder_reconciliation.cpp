#include "OrvanRelationshipAttention/follow_up/internal/reminder_reconciliation.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <vector>

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"
#include "OrvanRelationshipAttention/follow_up/internal/reminder_registration.h"
#include "OrvanSpineCore/action_effect_store.h"

namespace orvan::internal {
namespace {

/// Asked before each step; false ends the pass.
using MayContinue = std::function<bool()>;

struct Counts {
  long cancelled = 0;
  long registered = 0;
  long settled = 0;
  long skippedPastDue = 0;
  long deliveredRemoved = 0;
};

/// What became of one live follow-up.
struct LiveReminderOutcome {
  bool registered = false;
  bool settled = false;
  bool skippedPastDue = false;
};

/// Holds the slot for one pass, and gives it back however the pass ends.
class ReconcileSlot {
 public:
  explicit ReconcileSlot(std::shared_ptr<FollowUpAuthorizationRecovery> recovery)
      : recovery_(std::move(recovery)), claimed_(recovery_->claimReconcile()) {}
  ~ReconcileSlot() {
    if (claimed_) {
      recovery_->finishReconcile();
    }
  }
  ReconcileSlot(const ReconcileSlot&) = delete;
  ReconcileSlot& operator=(const ReconcileSlot&) = delete;

  bool isClaimed() const noexcept { return claimed_; }

 private:
  std::shared_ptr<FollowUpAuthorizationRecovery> recovery_;
  bool claimed_;
};

std::optional<std::vector<PersistedFollowUp>> readLiveFollowUps(const Parts& parts) {
  try {
    return parts->pool->read([](Connection& connection) { return liveFollowUps(connection); });
  } catch (...) {
    return std::nullopt;
  }
}

std::unordered_set<std::string> idsOf(const std::vector<PersistedFollowUp>& rows) {
  std::unordered_set<std::string> ids;
  ids.reserve(rows.size());
  for (const auto& row : rows) {
    ids.insert(row.id());
  }
  return ids;
}

/// A reminder under an old form of key is replaced even when a live follow-up has that very id.
bool hasReminder(const NotificationKeys& pending, const std::string& followUpID) {
  return pending.contains(followUpID) && !isLegacyFollowUpKey(followUpID);
}

/// Whether a reminder is to come at all.
bool liesAhead(const PersistedFollowUp& row, Instant now) {
  const auto due = ActionEffectStore::parse(row.dueAt());
  return due.has_value() && *due > now;
}

void settlePostCommit(Connection& connection, const std::string& followUpID, Instant now) {
  const auto origin =
      connection.fetchOptionalText("SELECT origin_operation_id FROM follow_up WHERE id = ?", followUpID);
  const auto operationID = origin.has_value() ? Uuid::parse(*origin) : std::nullopt;
  if (operationID.has_value()) {
    ActionEffectStore::settlePostCommit(connection, *operationID, now);
  }
}

/// Whether the transaction came through; what it could not settle stays owed.
template <typename Body>
bool wrote(const Parts& parts, Body body) {
  try {
    parts->pool->write(body);
    return true;
  } catch (...) {
    return false;
  }
}

Task<std::optional<LiveReminderRegistration>> registrationOf(Parts parts, std::string followUpID) {
  try {
    co_return co_await registerLiveReminder(parts, std::move(followUpID), true, std::nullopt);
  } catch (...) {
    co_return std::nullopt;
  }
}

Task<LiveReminderOutcome> reconcileLiveReminder(Parts parts, const PersistedFollowUp& row,
                                                const MayContinue& mayContinue) {
  const auto due = mayContinue() ? ActionEffectStore::parse(row.dueAt()) : std::nullopt;
  if (!due.has_value()) {
    co_return LiveReminderOutcome{};
  }
  const LiveReminderOutcome pastDue{.skippedPastDue = true};
  if (*due <= parts->clock->now()) {
    co_return pastDue;
  }
  if (!mayContinue()) {
    co_return LiveReminderOutcome{};
  }
  const auto registration = co_await registrationOf(parts, row.id());
  if (registration == LiveReminderRegistration::pastDue) {
    co_return pastDue;
  }
  LiveReminderOutcome outcome;
  outcome.registered = registration == LiveReminderRegistration::registered;
  if (outcome.registered && mayContinue()) {
    outcome.settled =
        wrote(parts, [&](Connection& connection) { settlePostCommit(connection, row.id(), parts->clock->now()); });
  }
  co_return outcome;
}

// The steps of a pass say whether it goes on.

Task<bool> withdrawStale(Parts parts, const MayContinue& mayContinue, const NotificationKeys& pending,
                         const std::unordered_set<std::string>& liveIDs, Counts& counts) {
  for (const auto& key : pending) {
    if (liveIDs.contains(key) && !isLegacyFollowUpKey(key)) {
      continue;
    }
    if (!mayContinue()) {
      co_return false;
    }
    co_await parts->notifications->cancel(key);
    ++counts.cancelled;
  }
  co_return true;
}

Task<bool> removeOrphaned(Parts parts, const MayContinue& mayContinue, const NotificationKeys& delivered,
                          const std::unordered_set<std::string>& liveIDs, Counts& counts) {
  for (const auto& key : delivered) {
    if (liveIDs.contains(key)) {
      continue;
    }
    if (!mayContinue()) {
      co_return false;
    }
    co_await parts->notifications->removeDelivered(key);
    ++counts.deliveredRemoved;
  }
  co_return true;
}

Task<bool> registerMissing(Parts parts, const MayContinue& mayContinue, const NotificationKeys& pending,
                           const std::vector<PersistedFollowUp>& rows, Counts& counts) {
  if (!mayContinue()) {
    co_return false;
  }
  const bool granted = co_await parts->notifications->authorizationGranted();
  if (!granted) {
    co_return false;
  }
  for (const auto& row : rows) {
    if (hasReminder(pending, row.id())) {
      continue;
    }
    if (!parts->authorizationRecovery->beginReconcileItem()) {
      co_return false;
    }
    const LiveReminderOutcome outcome = co_await reconcileLiveReminder(parts, row, mayContinue);
    parts->authorizationRecovery->endReconcileItem();
    counts.registered += outcome.registered ? 1 : 0;
    counts.settled += outcome.settled ? 1 : 0;
    counts.skippedPastDue += outcome.skippedPastDue ? 1 : 0;
  }
  co_return true;
}

Task<void> settleUndoneUnlinks(Parts parts, const MayContinue& mayContinue) {
  if (!mayContinue()) {
    co_return;
  }
  const auto pendingNow = co_await parts->notifications->readPendingRequestKeys();
  if (!pendingNow.has_value()) {
    co_return;
  }
  wrote(parts, [&](Connection& connection) {
    ActionEffectStore::settleUndoneUnlinkObligations(connection, *pendingNow, parts->clock->now());
  });
}

Task<void> runSteps(Parts parts, const MayContinue& mayContinue, Counts& counts) {
  const auto pending = co_await parts->notifications->readPendingRequestKeys();
  if (!pending.has_value()) {
    // Taken for none, all of them would be registered anew, and what was to be withdrawn would count as withdrawn.
    co_return;
  }
  const NotificationKeys delivered = co_await parts->notifications->deliveredRequestKeys();
  if (!mayContinue()) {
    co_return;
  }
  const auto rows = readLiveFollowUps(parts);
  if (!rows.has_value() || !mayContinue()) {
    co_return;
  }
  const auto liveIDs = idsOf(*rows);
  bool goesOn = co_await withdrawStale(parts, mayContinue, *pending, liveIDs, counts);
  if (goesOn) {
    goesOn = co_await removeOrphaned(parts, mayContinue, delivered, liveIDs, counts);
  }
  if (goesOn) {
    goesOn = co_await registerMissing(parts, mayContinue, *pending, *rows, counts);
  }
  if (goesOn) {
    co_await settleUndoneUnlinks(parts, mayContinue);
  }
}

/// A pass; the caller holds the slot.
Task<void> reconcile(Parts parts, MayContinue mayContinue) {
  Counts counts;
  try {
    co_await runSteps(parts, mayContinue, counts);
  } catch (...) { // NOLINT(bugprone-empty-catch): the port promises not to throw; a port that does has ended the pass.
  }
  parts->log.write("follow-up reconcile", {{"cancelled", std::to_string(counts.cancelled)},
                                           {"registered", std::to_string(counts.registered)},
                                           {"settled", std::to_string(counts.settled)},
                                           {"skipped_past_due", std::to_string(counts.skippedPastDue)},
                                           {"delivered_removed", std::to_string(counts.deliveredRemoved)}});
}

MayContinue continuationTest(const Parts& parts) {
  return [recovery = parts->authorizationRecovery] { return recovery->mayContinueReconcile(); };
}

/// Withdraws what is pending and what is shown, the one also when the port breaks its promise not to throw at the
/// other.
Task<void> withdraw(Parts parts, std::string key) {
  try {
    co_await parts->notifications->cancel(key);
  } catch (...) { // NOLINT(bugprone-empty-catch): withdrawing reports no outcome.
  }
  try {
    co_await parts->notifications->removeDelivered(key);
  } catch (...) { // NOLINT(bugprone-empty-catch): withdrawing reports no outcome.
  }
}

Task<bool> isPending(Parts parts, std::string key) {
  try {
    const NotificationKeys pending = co_await parts->notifications->pendingRequestKeys();
    co_return pending.contains(key);
  } catch (...) {
    co_return false;
  }
}

std::optional<PersistedFollowUp> readFollowUp(const Parts& parts, const std::string& followUpID) {
  try {
    return parts->pool->read([&](Connection& connection) { return loadFollowUp(connection, followUpID); });
  } catch (...) {
    return std::nullopt;
  }
}

} // namespace

Task<void> reconcileGuarded(Parts parts) {
  const ReconcileSlot slot{parts->authorizationRecovery};
  if (slot.isClaimed()) {
    co_await reconcile(parts, continuationTest(parts));
  }
}

Task<void> reconcileWhenGranted(Parts parts) {
  const ReconcileSlot slot{parts->authorizationRecovery};
  if (!slot.isClaimed()) {
    co_return;
  }
  const bool granted = co_await parts->notifications->authorizationGranted();
  const MayContinue mayContinue = continuationTest(parts);
  if (granted && mayContinue()) {
    co_await reconcile(parts, mayContinue);
  }
}

Task<bool> liveReminderObligationRemains(Parts parts) {
  const auto pending = co_await parts->notifications->readPendingRequestKeys();
  const auto rows = readLiveFollowUps(parts);
  if (!pending.has_value() || !rows.has_value()) {
    co_return true;
  }
  const Instant now = parts->clock->now();
  co_return std::ranges::any_of(
      *rows, [&](const PersistedFollowUp& row) { return liesAhead(row, now) && !hasReminder(*pending, row.id()); });
}

Task<void> cancelPairReminder(Parts parts, std::string sourceObjectID, std::string personID) {
  co_await withdraw(parts, followUpKey(sourceObjectID, personID));
}

Task<void> cancelIdentifiedReminder(Parts parts, std::string followUpID) {
  const bool wasPending = co_await isPending(parts, followUpID);
  co_await withdraw(parts, followUpID);
  parts->log.write("follow-up cancel",
                   {{"key_hash", followUpKeyHash(followUpID)}, {"outcome", wasPending ? "cancelled" : "not_pending"}});
  const auto row = readFollowUp(parts, followUpID);
  if (row.has_value() && hasVersion25Form(followUpID)) {
    co_await withdraw(parts, followUpKey(row->sourceObjectID(), row->personID()));
  }
}

} // namespace orvan::internal
