#include "application/follow_ups/reminders.h"

#include <exception>
#include <utility>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "application/session/listed_follow_up.h"
#include "application/store/application_store.h"
#include "application/store/key_change.h"

namespace orvan {
namespace {

/// Decisions on the connections that are open anyway.
class DispositionsInPool final : public FollowUpDispositionApplying {
 public:
  explicit DispositionsInPool(std::shared_ptr<DatabasePool> pool) : pool_(std::move(pool)) {}

  Task<AttentionItemDispositionRecord> apply(AttentionCatchUpItem item, AttentionItemAction action,
                                             Instant asOf) override {
    return applyIn(pool_, std::move(item), action, asOf);
  }

 private:
  static Task<AttentionItemDispositionRecord> applyIn(std::shared_ptr<DatabasePool> pool, AttentionCatchUpItem item,
                                                      AttentionItemAction action, Instant asOf) {
    co_return pool->write(
        [&](Connection& connection) { return AttentionDispositionStore::apply(item, action, asOf, connection); });
  }

  std::shared_ptr<DatabasePool> pool_;
};

std::shared_ptr<DatabasePool> openedPool(const SessionSettings& settings) {
  settings.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings.store);
  settleKeyChange(settings.store, StoreKey(settings.keyFile));
  return ApplicationStore::openPool(settings.store, CredentialVault{std::make_shared<StoreKey>(settings.keyFile)});
}

AuthorizationRecheck timing(std::chrono::nanoseconds waitForTheUser) {
  const auto standard = AuthorizationRecheck::standard();
  return {standard.interval(), standard.window(), waitForTheUser};
}

Task<void> withdrawEach(std::shared_ptr<FollowUpNotificationScheduling> centre, std::vector<ListedFollowUp> followUps) {
  const auto pending = co_await centre->pendingRequestKeys();
  const auto delivered = co_await centre->deliveredRequestKeys();
  for (const auto& followUp : followUps) {
    if (pending.contains(followUp.id)) {
      co_await centre->cancel(followUp.id);
    }
    if (delivered.contains(followUp.id)) {
      co_await centre->removeDelivered(followUp.id);
    }
  }
}

} // namespace

Reminders::Reminders(const SessionSettings& settings, std::shared_ptr<FollowUpNotificationScheduling> centre,
                     std::chrono::nanoseconds waitForTheUser, Executor executor, std::shared_ptr<const Clock> clock,
                     std::shared_ptr<LogSink> log)
    : pool_(openedPool(settings)),
      centre_(std::move(centre)),
      executor_(std::move(executor)),
      scheduler_(pool_, centre_, std::make_shared<DispositionsInPool>(pool_), timing(waitForTheUser), executor_,
                 std::move(clock), std::move(log)) {}

Reminders::~Reminders() {
  try {
    waitFor(executor_, scheduler_.stopAuthorizationRecoveryAndDrain());
    ApplicationStore::checkpointWithoutWaiting(*pool_);
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): what waits for the user does so elsewhere, too.
  }
}

std::optional<EffectReasonToken> Reminders::set(const std::string& followUpID) {
  // The row has the due time, and what was captured the words.
  return waitFor(executor_, scheduler_.registerReminder(followUpID, std::string{}, Instant{}));
}

void Reminders::withdraw(const std::string& followUpID) {
  waitFor(executor_, scheduler_.cancelReminder(followUpID));
}

void Reminders::reconcile() {
  waitFor(executor_, scheduler_.reconcileReminders());
  auto hidden = pool_->read([](Connection& connection) { return hiddenFollowUps(connection); });
  if (!hidden.empty()) {
    waitFor(executor_, withdrawEach(centre_, std::move(hidden)));
  }
}

} // namespace orvan
