#include "OrvanRelationshipAttention/follow_up/internal/reminder_registration.h"

#include <algorithm>

#include "OrvanRelationshipAttention/follow_up/follow_up_registration_tracker.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/internal/authorization_watcher.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"
#include "OrvanRelationshipAttention/follow_up/internal/reminder_text.h"
#include "OrvanSpineCore/action_effect_store.h"

namespace orvan::internal {
namespace {

using Token = std::optional<EffectReasonToken>;
using AuthorizationResult = FollowUpAuthorizationRecovery::AuthorizationResult;

/// Counts a key as active for as long as it exists, however the work under it ends.
class ActiveRegistration {
 public:
  explicit ActiveRegistration(std::string key) : key_(std::move(key)) {
    FollowUpRegistrationTracker::shared().begin(key_);
  }
  ~ActiveRegistration() { FollowUpRegistrationTracker::shared().end(key_); }
  ActiveRegistration(const ActiveRegistration&) = delete;
  ActiveRegistration& operator=(const ActiveRegistration&) = delete;

 private:
  std::string key_;
};

using SharedRegistration = std::shared_ptr<ActiveRegistration>;

/// What is to be registered, and how to tell afterwards whether it still should be.
struct Reminder {
  std::string key;
  std::string subject;
  Instant dueAt;
  std::function<bool()> isLive;
};

/// The centre may take a reminder whose follow-up ended or moved meanwhile; such a one is withdrawn again.
Task<LiveReminderRegistration> registerAndRecheck(Parts parts, Reminder reminder) {
  co_await parts->notifications->registerRequest(reminder.key, reminder.subject, reminder.dueAt);
  if (reminder.isLive()) {
    co_return LiveReminderRegistration::registered;
  }
  co_await parts->notifications->cancel(reminder.key);
  co_await parts->notifications->removeDelivered(reminder.key);
  co_return LiveReminderRegistration::notLive;
}

/// `registration` is let go when the work has ended, which may be long after the deadline.
Task<LiveReminderRegistration> raceRegistration(Parts parts, Reminder reminder, FollowUpRegistrationBudget budget,
                                                SharedRegistration registration) {
  auto work = registerAndRecheck(parts, std::move(reminder));
  return racingRegistrationDeadline(
      parts->executor, parts->clock, budget.deadline(),
      [registration = std::move(registration)]() mutable { registration.reset(); }, std::move(work));
}

bool pairIsLive(Connection& connection, const std::string& sourceObjectID, const std::string& personID,
                const std::string& dueText) {
  const auto live = liveFollowUps(connection, sourceObjectID, personID);
  return std::ranges::any_of(live, [&](const PersistedFollowUp& row) { return row.dueAt() == dueText; });
}

/// A read that fails counts as not live.
bool pairReminderIsLive(const Parts& parts, const std::string& sourceObjectID, const std::string& personID,
                        Instant dueAt) {
  try {
    return parts->pool->read([&](Connection& connection) {
      return pairIsLive(connection, sourceObjectID, personID, ActionEffectStore::stamp(dueAt));
    });
  } catch (...) {
    return false;
  }
}

bool reminderIsLive(const Parts& parts, const std::string& followUpID, const std::string& registeredDueAt) {
  try {
    const auto row = parts->pool->read([&](Connection& connection) { return liveFollowUp(connection, followUpID); });
    return row.has_value() && row->dueAt() == registeredDueAt;
  } catch (...) {
    return false;
  }
}

std::string subjectOfSourceObject(const Parts& parts, const std::string& sourceObjectID) {
  try {
    return parts->pool->read([&](Connection& connection) { return notificationSubject(connection, sourceObjectID); });
  } catch (...) {
    return std::string{FollowUpScheduler::notificationTitle};
  }
}

std::string subjectOfFollowUp(const Parts& parts, const std::string& followUpID) {
  try {
    return parts->pool->read([&](Connection& connection) {
      const auto row = loadFollowUp(connection, followUpID);
      return row.has_value() ? notificationSubject(connection, row->sourceObjectID())
                             : std::string{FollowUpScheduler::notificationTitle};
    });
  } catch (...) {
    return std::string{FollowUpScheduler::notificationTitle};
  }
}

Task<Token> tokenOfUnauthorized(Parts parts) {
  const bool undetermined = co_await parts->notifications->authorizationIsUndetermined();
  co_return undetermined ? EffectReasonToken::authorizationPending : EffectReasonToken::notificationsDenied;
}

Task<Token> tokenOfDenied(Parts parts) {
  const Token token = co_await tokenOfUnauthorized(parts);
  if (token == EffectReasonToken::authorizationPending) {
    startAuthorizationWatcher(parts, WatcherStart{.recheckSettledAuthorization = false, .immediately = false});
  }
  co_return token;
}

/// Why nothing may be registered, after waiting for the user within the budget.
Task<Token> authorizationRefusal(Parts parts, FollowUpRegistrationBudget budget) {
  const bool granted = co_await parts->notifications->authorizationGranted();
  if (granted) {
    co_return std::nullopt;
  }
  const auto remaining = budget.remaining();
  if (remaining <= std::chrono::nanoseconds::zero()) {
    co_return co_await tokenOfUnauthorized(parts);
  }
  switch (co_await parts->authorizationRecovery->waitForAuthorization(parts->notifications, remaining)) {
    case AuthorizationResult::granted:
      co_return std::nullopt;
    case AuthorizationResult::denied:
      co_return co_await tokenOfDenied(parts);
    case AuthorizationResult::timedOut:
      startAuthorizationWatcher(parts, WatcherStart{.recheckSettledAuthorization = true, .immediately = true});
      co_return EffectReasonToken::authorizationPending;
    case AuthorizationResult::stopped:
      break;
  }
  co_return EffectReasonToken::notificationsDenied;
}

Token tokenOf(LiveReminderRegistration registration) {
  return registration == LiveReminderRegistration::registered ? Token{} : Token{EffectReasonToken::followUpNotLive};
}

/// Registers a pair's reminder that may be registered, in what is left of the budget.
Task<LiveReminderRegistration> registerPair(Parts parts, std::string sourceObjectID, std::string personID,
                                            Instant dueAt, FollowUpRegistrationBudget budget) {
  std::string key = followUpKey(sourceObjectID, personID);
  std::string subject = subjectOfSourceObject(parts, sourceObjectID);
  auto registration = std::make_shared<ActiveRegistration>(key);
  if (budget.remaining() <= std::chrono::nanoseconds::zero()) {
    throw FollowUpRegistrationTimeout{};
  }
  std::function<bool()> isLive = [parts, sourceObjectID, personID, dueAt] {
    return pairReminderIsLive(parts, sourceObjectID, personID, dueAt);
  };
  Reminder reminder{.key = std::move(key), .subject = std::move(subject), .dueAt = dueAt, .isLive = std::move(isLive)};
  co_return co_await raceRegistration(parts, std::move(reminder), budget, std::move(registration));
}

/// Throws what keeps the reminder from being registered in time.
Task<Token> tryRegisterPair(Parts parts, std::string sourceObjectID, std::string personID, Instant dueAt) {
  if (!pairReminderIsLive(parts, sourceObjectID, personID, dueAt)) {
    co_return EffectReasonToken::followUpNotLive;
  }
  const FollowUpRegistrationBudget budget{parts->clock, parts->authorizationRecheck.registrationTimeout()};
  const Token refusal = co_await authorizationRefusal(parts, budget);
  if (refusal.has_value()) {
    co_return refusal;
  }
  co_return tokenOf(co_await registerPair(parts, sourceObjectID, personID, dueAt, budget));
}

Task<Token> tryRegisterIdentified(Parts parts, std::string followUpID) {
  const FollowUpRegistrationBudget budget{parts->clock, parts->authorizationRecheck.registrationTimeout()};
  const Token refusal = co_await authorizationRefusal(parts, budget);
  if (refusal.has_value()) {
    co_return refusal;
  }
  co_return tokenOf(co_await registerLiveReminder(parts, followUpID, false, budget));
}

/// A registration that could not be completed is left to the watcher and its reconciliation.
Task<Token> tokenOfAttempt(Parts parts, Task<Token> attempt) {
  try {
    co_return co_await std::move(attempt);
  } catch (...) {
    startAuthorizationWatcher(parts, WatcherStart{.recheckSettledAuthorization = false, .immediately = false});
    co_return EffectReasonToken::reminderNotRegistered;
  }
}

} // namespace

Task<Token> registerPairReminder(Parts parts, std::string sourceObjectID, std::string personID, Instant dueAt) {
  const ActiveRegistration call{followUpKey(sourceObjectID, personID)};
  co_return co_await tokenOfAttempt(parts, tryRegisterPair(parts, sourceObjectID, personID, dueAt));
}

Task<Token> registerIdentifiedReminder(Parts parts, std::string followUpID) {
  const ActiveRegistration call{followUpID};
  co_return co_await tokenOfAttempt(parts, tryRegisterIdentified(parts, followUpID));
}

Task<LiveReminderRegistration> registerLiveReminder(Parts parts, std::string followUpID, bool refusePastDue,
                                                    std::optional<FollowUpRegistrationBudget> budget) {
  auto registration = std::make_shared<ActiveRegistration>(followUpID);
  std::string subject = subjectOfFollowUp(parts, followUpID);
  const auto row = parts->pool->read([&](Connection& connection) { return liveFollowUp(connection, followUpID); });
  const auto due = row.has_value() ? ActionEffectStore::parse(row->dueAt()) : std::nullopt;
  if (!due.has_value()) {
    co_return LiveReminderRegistration::notLive;
  }
  if (refusePastDue && *due <= parts->clock->now()) {
    co_return LiveReminderRegistration::pastDue;
  }
  const auto allowed =
      budget.value_or(FollowUpRegistrationBudget{parts->clock, parts->authorizationRecheck.registrationTimeout()});
  if (allowed.remaining() <= std::chrono::nanoseconds::zero()) {
    throw FollowUpRegistrationTimeout{};
  }
  std::function<bool()> isLive = [parts, followUpID, dueText = row->dueAt()] {
    return reminderIsLive(parts, followUpID, dueText);
  };
  Reminder reminder{.key = followUpID, .subject = std::move(subject), .dueAt = *due, .isLive = std::move(isLive)};
  co_return co_await raceRegistration(parts, std::move(reminder), allowed, std::move(registration));
}

} // namespace orvan::internal
