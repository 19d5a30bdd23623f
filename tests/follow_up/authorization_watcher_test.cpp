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

std::string ended(const std::string& outcome) {
  return "follow-up authorization watcher ended outcome=" + outcome;
}

class AuthorizationWatcher : public FollowUpStoreTest {
 protected:
  /// Leaves a live follow-up without its reminder and the watcher running, refusal final for it.
  void startByFailedRegistration() {
    schedule("f-1", clock->now() + 24h);
    center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
    EXPECT_EQ(registerById().get(), EffectReasonToken::reminderNotRegistered);
    ASSERT_EQ(lastLine(), started);
    log->clear();
  }

  /// The same by a user who did not answer in time: the watcher checks at once and refusal is not final.
  void startByUnansweredQuestion() {
    schedule("f-1", clock->now() + 24h);
    center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
    center->script(Operation::requestAuthorization, CenterBehaviour::hang());
    auto token = registerById();
    advance(20s - 1ns);
    EXPECT_FALSE(isReady(token));
    const auto before = checks();
    advance(1ns);
    EXPECT_EQ(token.get(), EffectReasonToken::authorizationPending);
    ASSERT_EQ(lastLine(), started);
    EXPECT_EQ(checks() - before, 2U) << "it checks at once";
    log->clear();
  }

  std::size_t checks() const { return center->callCount(Operation::notificationSettings); }
};

TEST_F(AuthorizationWatcher, SleepsItsIntervalAndThenRegistersWhatIsMissing) {
  startByFailedRegistration();
  advance(5s - 1ns);
  EXPECT_THAT(pending(), IsEmpty());
  advance(1ns);
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder")));
  EXPECT_THAT(log->messages(),
              ElementsAre(testing::HasSubstr("outcome=added"), passLine(0, 1, 1, 0, 0), ended("reconciled")));
}

TEST_F(AuthorizationWatcher, ChecksEachIntervalUntilItsWindowEnds) {
  startByUnansweredQuestion();
  const auto before = checks();
  for (int second = 0; second < 599; ++second) {
    advance(1s);
  }
  EXPECT_EQ(checks() - before, 2U * 119U) << "two questions every five seconds";
  EXPECT_EQ(lastLine(), "");
  advance(1s);
  EXPECT_EQ(lastLine(), ended("window"));
  advance(1h);
  EXPECT_EQ(checks() - before, 2U * 119U);
}

TEST_F(AuthorizationWatcher, ASleepThatIsCutShortWithoutStoppingEndsItAsItsWindowDoes) {
  startByFailedRegistration();
  clock->cancelTimers();
  settle();
  EXPECT_EQ(lastLine(), ended("window"));
}

TEST_F(AuthorizationWatcher, GoesOnWhileRemindersAreOwedOrTheStoreOrTheCenterCannotSay) {
  startByFailedRegistration();
  center->script(Operation::add, CenterBehaviour::fail());
  advance(5s);
  EXPECT_EQ(lastLine(), passLine(0, 0, 0, 0, 0));
  complete("f-1");
  execute("ALTER TABLE follow_up RENAME TO hidden");
  log->clear();
  advance(5s);
  EXPECT_EQ(lastLine(), passLine(0, 0, 0, 0, 0));
  execute("ALTER TABLE hidden RENAME TO follow_up");
  center->script(Operation::pendingRequests, CenterBehaviour::throwError());
  log->clear();
  advance(5s);
  EXPECT_EQ(lastLine(), passLine(0, 0, 0, 0, 0));
  center->script(Operation::pendingRequests, CenterBehaviour::answer());
  advance(5s);
  EXPECT_EQ(lastLine(), ended("reconciled"));
}

TEST_F(AuthorizationWatcher, ARefusalEndsItUnlessItWasAskedToWatchOn) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center->script(Operation::requestAuthorization, CenterBehaviour::fail());
  EXPECT_EQ(registerById().get(), EffectReasonToken::authorizationPending);
  advance(5s);
  EXPECT_EQ(lastLine(), started) << "the user has not decided";
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  advance(5s);
  EXPECT_EQ(lastLine(), ended("denied"));

  startByUnansweredQuestion();
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  advance(5s);
  EXPECT_EQ(lastLine(), "");
  center->setAuthorizationStatus(AuthorizationStatus::authorized);
  advance(5s);
  EXPECT_EQ(lastLine(), ended("reconciled"));
}

TEST_F(AuthorizationWatcher, OneRunsAtATimeAndALaterOneStartsAfresh) {
  startByFailedRegistration();
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  registerById();
  EXPECT_THAT(log->messages(), Not(Contains(started)));
  advance(5s);
  ASSERT_EQ(lastLine(), ended("reconciled"));
  startByFailedRegistration();
}

TEST_F(AuthorizationWatcher, StoppingEndsItsSleepAlsoWhenItsSchedulerIsGone) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::fail());
  auto other = std::make_unique<FollowUpScheduler>(makeScheduler(pool));
  resultOf(other->registerReminder("f-1", "a title", inOneHour()));
  const FollowUpScheduler copy = *other;
  other.reset();
  advance(5s);
  copy.stopAuthorizationRecovery();
  settle();
  EXPECT_EQ(lastLine(), ended("stopped"));
  EXPECT_EQ(clock->timerCount(), 0U);
}

TEST_F(AuthorizationWatcher, AnAnswerAfterStoppingStartsNothing) {
  startByFailedRegistration();
  center->scriptCall(Operation::notificationSettings, 1, CenterBehaviour::hang());
  advance(5s);
  scheduler.stopAuthorizationRecovery();
  answerHeld();
  EXPECT_EQ(lastLine(), ended("stopped"));
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(AuthorizationWatcher, PassesOverAPassThatAlreadyRuns) {
  startByFailedRegistration();
  center->scriptCall(Operation::deliveredNotifications, 1, CenterBehaviour::hang());
  auto pass = start(scheduler.reconcileReminders());
  advance(5s);
  EXPECT_EQ(lastLine(), "") << "a reminder is owed, and it neither reconciles nor waits";
  answerHeld();
  EXPECT_TRUE(isReady(pass));
  advance(5s);
  EXPECT_EQ(lastLine(), ended("reconciled"));
}

} // namespace
} // namespace orvan
