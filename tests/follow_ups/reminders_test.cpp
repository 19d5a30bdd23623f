#include "application/follow_ups/reminders.h"

#include <gtest/gtest.h>

#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "OrvanTestSupport/in_memory_notification_center.h"
#include "application/corrections/follow_up_actions.h"
#include "application/corrections/hiding.h"
#include "application/corrections/taking_back.h"
#include "application/follow_ups/notification_application.h"
#include "application/follow_ups/store_follow_ups.h"
#include "application/session/session.h"
#include "application/session/store_creation.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

/// A store with Ada in it, and a centre of the process's own, both by the machine's clock.
class RemindersOfAStore : public testing::Test {
 protected:
  template <typename Body>
  auto write(Body body) const {
    Session session(settings_);
    return session.writableStore().write(body);
  }

  RemindersOfAStore() {
    deriveKeysQuickly();
    createStoreAndKey(settings_);
    write([](Connection& store) {
      store.execute("INSERT INTO person (id, display_name, created_at) VALUES ('ada', 'Ada', '')");
    });
    NotificationCenter::setCurrent(center_);
  }
  ~RemindersOfAStore() override { NotificationCenter::setCurrent(nullptr); }

  std::string add(Instant dueAt) const {
    return write([&](Connection& store) {
      return addFollowUp({.personID = "ada", .dueAt = dueAt, .text = "call", .interactionID = {}}, now_, store);
    });
  }
  NotificationKeys pending() const { return waitFor(sharedWorkExecutor(), scheduling_->pendingRequestKeys()); }
  void reconcile() const { StoreFollowUps(settings_).reconcile(scheduling_); }

  ScratchFolder folder_;
  const SessionSettings settings_{.store = folder_.path() / "store.db", .keyFile = folder_.path() / "key"};
  const Instant now_ = SystemClock().now();
  const std::shared_ptr<InMemoryNotificationCenter> center_ = std::make_shared<InMemoryNotificationCenter>(
      sharedWorkExecutor(), std::make_shared<SystemClock>(), AuthorizationStatus::authorized);
  const std::shared_ptr<FollowUpNotificationScheduling> scheduling_ =
      std::make_shared<UserNotificationsFollowUpScheduling>();
};

TEST_F(RemindersOfAStore, FollowTheFollowUpsThroughEverythingTheUserDoes) {
  const auto id = add(now_ + 1h);
  EXPECT_EQ(Reminders(settings_, scheduling_).set(id), std::nullopt);
  EXPECT_EQ(pending(), NotificationKeys{id});

  const StoreFollowUps followUps(settings_);
  EXPECT_EQ(followUps.personOf(id), "ada");
  EXPECT_EQ(followUps.complete(id, now_), StoreFollowUps::Completion::done);
  EXPECT_EQ(followUps.complete(id, now_), StoreFollowUps::Completion::notScheduled);
  Reminders(settings_, scheduling_).withdraw(id);
  EXPECT_EQ(pending(), NotificationKeys{});

  write([&](Connection& store) { return undoAction(std::nullopt, now_, store); });
  reconcile();
  EXPECT_EQ(pending(), NotificationKeys{id}) << "completing it was taken back";
  write([&](Connection& store) {
    ChangeRecorder recorder(store);
    hide(HiddenScope::person, "ada", now_, recorder, store);
  });
  reconcile();
  EXPECT_EQ(pending(), NotificationKeys{}) << "nothing reminds of somebody hidden";
  write([](Connection& store) { store.execute("UPDATE exclusion_rule SET ended_at = ''"); });
  reconcile();
  EXPECT_EQ(pending(), NotificationKeys{id});
  write([&](Connection& store) { return undoAction(1, now_, store); });
  reconcile();
  EXPECT_EQ(pending(), NotificationKeys{}) << "it was never made";
}

TEST_F(RemindersOfAStore, WaitForTheUserAWhileAndNeverAskInAPass) {
  center_->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center_->script(InMemoryNotificationCenter::Operation::requestAuthorization, CenterBehaviour::hang());
  const auto id = add(now_ + 1h);
  EXPECT_EQ(Reminders(settings_, scheduling_, 100ms).set(id), EffectReasonToken::authorizationPending);
  center_->dropHeld();
  reconcile();
  EXPECT_EQ(center_->callCount(InMemoryNotificationCenter::Operation::requestAuthorization), 1U);
  EXPECT_EQ(pending(), NotificationKeys{});
  center_->setAuthorizationStatus(AuthorizationStatus::authorized);
  reconcile();
  EXPECT_EQ(pending(), NotificationKeys{id});
}

TEST(NotificationApplication, IsOneForEachStoreWhateverItIsCalled) {
  const ScratchFolder folder;
  const auto id = notificationApplicationOf(folder.path() / "store.db");
  EXPECT_EQ(id, notificationApplicationOf(folder.path() / "x" / ".." / "store.db"));
  EXPECT_NE(id, notificationApplicationOf(folder.path() / "other.db"));
  EXPECT_EQ(notificationApplicationOf("/store.db"), "org.orvan.Orvan.c163f07fe759");
}

} // namespace
} // namespace orvan
