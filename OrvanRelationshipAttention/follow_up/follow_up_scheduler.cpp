#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"

#include <utility>

#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/follow_up/internal/attention_resolution.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_log.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_parts.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"
#include "OrvanRelationshipAttention/follow_up/internal/reminder_reconciliation.h"
#include "OrvanRelationshipAttention/follow_up/internal/reminder_registration.h"

namespace orvan {
namespace {

Task<void> drain(std::shared_ptr<internal::FollowUpAuthorizationRecovery> recovery) {
  co_await recovery->stopAndDrain();
}

} // namespace

FollowUpScheduler::FollowUpScheduler(std::shared_ptr<DatabasePool> pool,
                                     std::shared_ptr<FollowUpNotificationScheduling> notifications,
                                     std::shared_ptr<FollowUpDispositionApplying> dispositions,
                                     AuthorizationRecheck authorizationRecheck, Executor executor,
                                     std::shared_ptr<const Clock> clock, std::shared_ptr<LogSink> log) {
  auto recovery = std::make_shared<internal::FollowUpAuthorizationRecovery>(executor, clock);
  parts_ = std::make_shared<const internal::FollowUpParts>(
      internal::FollowUpParts{.pool = std::move(pool),
                              .notifications = std::move(notifications),
                              .dispositions = std::move(dispositions),
                              .authorizationRecheck = authorizationRecheck,
                              .authorizationRecovery = std::move(recovery),
                              .executor = std::move(executor),
                              .clock = std::move(clock),
                              .log = internal::followUpLog(std::move(log))});
}

std::string FollowUpScheduler::key(std::string_view sourceObjectID, std::string_view personID) {
  return internal::followUpKey(sourceObjectID, personID);
}

std::string FollowUpScheduler::openLoopID(std::string_view sourceObjectID, std::string_view personID) {
  return internal::followUpOpenLoopID(sourceObjectID, personID);
}

std::string FollowUpScheduler::openLoopID(std::string_view followUpID) {
  return internal::followUpOpenLoopID(followUpID);
}

bool FollowUpScheduler::isLegacyNotificationKey(std::string_view identifier) {
  return internal::isLegacyFollowUpKey(identifier);
}

std::optional<FollowUpRefusal> FollowUpScheduler::followUpRefusal(std::string_view title, Instant dueAt, Instant now) {
  if (trimmed(title).empty()) {
    return FollowUpRefusal::emptyTitle;
  }
  if (dueAt < now - pastTolerance) {
    return FollowUpRefusal::dueInThePast;
  }
  return std::nullopt;
}

std::optional<EffectReasonToken> FollowUpScheduler::refusal(const std::string& title, Instant dueAt,
                                                            Instant now) const {
  return followUpRefusal(title, dueAt, now).transform(token);
}

bool FollowUpScheduler::notificationMayPresent(Connection& connection, const std::string& followUpID) {
  if (internal::liveFollowUp(connection, followUpID).has_value()) {
    return true;
  }
  const auto pair = internal::pairOfFollowUpKey(followUpID);
  return pair.has_value() && !internal::liveFollowUps(connection, pair->sourceObjectID, pair->personID).empty();
}

std::optional<PersistedFollowUp> FollowUpScheduler::followUp(const std::string& id) const {
  return parts_->pool->read([&](Connection& connection) { return internal::loadFollowUp(connection, id); });
}

std::optional<PersistedFollowUp> FollowUpScheduler::followUp(const std::string& sourceObjectID,
                                                             const std::string& personID) const {
  return parts_->pool->read(
      [&](Connection& connection) { return internal::loadFollowUp(connection, sourceObjectID, personID); });
}

void FollowUpScheduler::reprojectCandidates(const std::string& personID) const {
  parts_->pool->write([&](Connection& connection) { reprojectCandidatesCore(connection, personID); });
}

// The asynchronous operations are not coroutines of this object: a task holds what it needs, and so outlives it.

Task<std::optional<EffectReasonToken>> FollowUpScheduler::registerReminder(std::string sourceObjectID,
                                                                           std::string personID, std::string /*title*/,
                                                                           Instant dueAt) const {
  return runOn(parts_->executor,
               internal::registerPairReminder(parts_, std::move(sourceObjectID), std::move(personID), dueAt));
}

Task<std::optional<EffectReasonToken>> FollowUpScheduler::registerReminder(std::string followUpID,
                                                                           std::string /*title*/,
                                                                           Instant /*dueAt*/) const {
  return runOn(parts_->executor, internal::registerIdentifiedReminder(parts_, std::move(followUpID)));
}

Task<void> FollowUpScheduler::cancelReminder(std::string sourceObjectID, std::string personID) const {
  return runOn(parts_->executor, internal::cancelPairReminder(parts_, std::move(sourceObjectID), std::move(personID)));
}

Task<void> FollowUpScheduler::cancelReminder(std::string followUpID) const {
  return runOn(parts_->executor, internal::cancelIdentifiedReminder(parts_, std::move(followUpID)));
}

Task<std::optional<EffectReasonToken>> FollowUpScheduler::resolveAttention(std::string sourceObjectID,
                                                                           std::string personID, Instant now) const {
  return runOn(parts_->executor,
               internal::resolvePairAttention(parts_, std::move(sourceObjectID), std::move(personID), now));
}

Task<std::optional<EffectReasonToken>> FollowUpScheduler::resolveAttention(std::string followUpID, Instant now) const {
  return runOn(parts_->executor, internal::resolveIdentifiedAttention(parts_, std::move(followUpID), now));
}

Task<void> FollowUpScheduler::reconcileReminders() const {
  return runOn(parts_->executor, internal::reconcileGuarded(parts_));
}

void FollowUpScheduler::stopAuthorizationRecovery() const {
  parts_->authorizationRecovery->stop();
}

Task<void> FollowUpScheduler::stopAuthorizationRecoveryAndDrain() const {
  return drain(parts_->authorizationRecovery);
}

} // namespace orvan
