#include <algorithm>

#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

constexpr auto started = "follow-up authorization watcher started";

class AuthorizationWatcher : public FollowUpStoreTest {
 protected:
  /// Leaves a live follow-up without its reminder and the watcher running, refusal final for it.
  void startByFailedRegistration() {
    schedule("f-1", clock->now() + 24h);
    center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
    resultOf(scheduler.registerReminder("f-1", "a title", inOneHour()));
    ASSERT_EQ(log->messages().back(), started);
    log->clear();
  }

  /// The same by a user who did not answer in time: the watcher checks at once and refusal is not final.
  void startByUnansweredQuestion() {
    schedule("f-1", clock->now() + 24h);
    center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
    center->script(Operation::requestAuthorization, CenterBehaviour::hang());
    auto token = start(scheduler.registerReminder("f-1", "a title", inOneHour()));
    advance(20s);
    ASSERT_TRUE(isReady(token));
    log->clear();
  }

  std::size_t checks() const { return center->callCount(Operation::notificationSettings); }
  std::string ending() const { return log->messages().empty() ? "" : log->messages().back(); }
};

TEST_F(AuthorizationWatcher, SleepsItsIntervalAndThenRegistersWhatIsMissing) {
  startByFailedRegistration();
  advance(5s - 1ns);
  EXPECT_THAT(pending(), IsEmpty());
  advance(1ns);
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder")));
  EXPECT_THAT(
      log->messages(),
      ElementsAre(testing::HasSubstr("outcome=added"),
                  "follow-up reconcile cancelled=0 registered=1 settled=1 skipped_past_due=0 delivered_removed=0",
                  "follow-up authorization watcher ended outcome=reconciled"));
}

TEST_F(AuthorizationWatcher, ChecksEachIntervalUntilItsWindowEnds) {
  startByUnansweredQuestion();
  const auto before = checks();
  for (int second = 0; second < 599; ++second) {
    advance(1s);
  }
  EXPECT_EQ(checks() - before, 2U * 119U) << "two questions every five seconds";
  EXPECT_EQ(ending(), "");
  advance(1s);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=window");
  advance(1h);
  EXPECT_EQ(checks() - before, 2U * 119U);
}

TEST_F(AuthorizationWatcher, GoesOnWhileRemindersAreOwedAndEndsOnceNoneIs) {
  startByFailedRegistration();
  center->script(Operation::add, CenterBehaviour::fail());
  advance(5s);
  advance(5s);
  EXPECT_EQ(ending(), "follow-up reconcile cancelled=0 registered=0 settled=0 skipped_past_due=0 delivered_removed=0");
  complete("f-1");
  advance(5s);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=reconciled");
}

TEST_F(AuthorizationWatcher, EndsWhenTheUserHasDecidedAgainst) {
  startByFailedRegistration();
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  advance(5s);
  EXPECT_EQ(ending(), "");
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  advance(5s);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=denied");
}

TEST_F(AuthorizationWatcher, WatchesOnAfterARefusalWhenAskedTo) {
  startByUnansweredQuestion();
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  advance(5s);
  advance(5s);
  EXPECT_EQ(ending(), "");
  center->setAuthorizationStatus(AuthorizationStatus::authorized);
  advance(5s);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=reconciled");
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder")));
}

TEST_F(AuthorizationWatcher, OneRunsAtATimeAndALaterOneStartsAfresh) {
  startByFailedRegistration();
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  resultOf(scheduler.registerReminder("f-1", "a title", inOneHour()));
  EXPECT_THAT(log->messages(), Not(Contains(started)));
  advance(5s);
  ASSERT_EQ(ending(), "follow-up authorization watcher ended outcome=reconciled");
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  resultOf(scheduler.registerReminder("f-1", "a title", inOneHour()));
  EXPECT_EQ(ending(), started);
}

TEST_F(AuthorizationWatcher, StoppingEndsItAsleepOrAtWork) {
  startByFailedRegistration();
  scheduler.stopAuthorizationRecovery();
  settle();
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=stopped");
}

TEST_F(AuthorizationWatcher, AnAnswerAfterStoppingStartsNothing) {
  startByFailedRegistration();
  center->script(Operation::notificationSettings, CenterBehaviour::hang());
  advance(5s);
  scheduler.stopAuthorizationRecovery();
  center->script(Operation::notificationSettings, CenterBehaviour::answer());
  center->answerHeld();
  settle();
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=stopped");
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(AuthorizationWatcher, DrainingWaitsForTheItemItsPassHasInHand) {
  startByFailedRegistration();
  schedule("f-2", clock->now() + 24h);
  center->script(Operation::add, CenterBehaviour::hang());
  advance(5s);
  auto drained = start(scheduler.stopAuthorizationRecoveryAndDrain());
  EXPECT_FALSE(isReady(drained));
  center->answerHeld();
  settle();
  EXPECT_TRUE(isReady(drained));
  EXPECT_EQ(pending().size(), 1U);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=stopped");
}

TEST_F(AuthorizationWatcher, PassesOverAPassThatAlreadyRuns) {
  startByFailedRegistration();
  center->script(Operation::deliveredNotifications, CenterBehaviour::hang());
  auto pass = start(scheduler.reconcileReminders());
  advance(5s);
  EXPECT_EQ(ending(), "") << "a reminder is owed, and it neither reconciles nor waits";
  center->script(Operation::deliveredNotifications, CenterBehaviour::answer());
  center->answerHeld();
  settle();
  EXPECT_TRUE(isReady(pass));
  advance(5s);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=reconciled");
}

TEST_F(AuthorizationWatcher, KeepsWatchingWhileTheStoreCannotBeRead) {
  startByFailedRegistration();
  execute("ALTER TABLE follow_up RENAME TO hidden");
  advance(5s);
  EXPECT_EQ(ending(), "follow-up reconcile cancelled=0 registered=0 settled=0 skipped_past_due=0 delivered_removed=0");
  execute("ALTER TABLE hidden RENAME TO follow_up");
  advance(5s);
  EXPECT_EQ(ending(), "follow-up authorization watcher ended outcome=reconciled");
}

} // namespace
} // namespace orvan
