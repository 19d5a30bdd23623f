#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto watcherStarted = "follow-up authorization watcher started";

class ReminderRegistration : public FollowUpStoreTest {
 protected:
  std::future<Token> registerById(const std::string& id) {
    return start(scheduler.registerReminder(id, "a title", inOneHour()));
  }
  std::future<Token> registerPair(Instant dueAt) {
    return start(scheduler.registerReminder("abc", "p1", "a title", dueAt));
  }

  bool watcherWasStarted() const { return std::ranges::count(log->messages(), watcherStarted) == 1; }
  static bool isActive(const std::string& key) { return FollowUpRegistrationTracker::shared().hasActive({key}); }

  /// What both forms do must not depend on the form.
  void expectBoth(Token token) {
    EXPECT_EQ(registerById("f-1").get(), token);
    EXPECT_EQ(registerPair(inOneHour()).get(), token);
  }
};

TEST_F(ReminderRegistration, ALiveFollowUpGetsAReminderThatSaysWhatTheUserSaid) {
  capture("abc", R"({"user_follow_up": "call  about\nthe lease"})");
  schedule("f-1", inOneHour());
  expectBoth(std::nullopt);
  EXPECT_THAT(pending(), ElementsAre(Pair("3:abc|2:p1", "Call about the lease"), Pair("f-1", "Call about the lease")));
  EXPECT_FALSE(isActive("f-1"));
  EXPECT_FALSE(isActive("3:abc|2:p1"));
  EXPECT_FALSE(watcherWasStarted());
}

TEST_F(ReminderRegistration, TheIdentifiedFormIsDueWhenTheRowSays) {
  schedule("f-1", inOneHour() + 3h);
  registerById("f-1");
  advance(1h);
  EXPECT_THAT(delivered(), IsEmpty());
  advance(3h);
  EXPECT_THAT(delivered(), ElementsAre("f-1"));
}

TEST_F(ReminderRegistration, WithoutAUsableContextTheReminderHasTheStandardTitle) {
  schedule("f-1", inOneHour());
  const auto title = [this] {
    registerById("f-1").get();
    return pending().at("f-1");
  };
  EXPECT_EQ(title(), "Follow-up reminder");
  capture("abc", "not JSON");
  EXPECT_EQ(title(), "Follow-up reminder");
  execute("UPDATE capture_artifact SET user_context = NULL");
  EXPECT_EQ(title(), "Follow-up reminder");
  execute(R"(UPDATE capture_artifact SET user_context = '{"user_follow_up": " "}')");
  EXPECT_EQ(title(), "Follow-up reminder");
  execute(R"(UPDATE capture_artifact SET user_context = '{"user_follow_up": "call"}')");
  EXPECT_EQ(title(), "Call");
}

TEST_F(ReminderRegistration, AFollowUpThatIsNotLiveIsNotRegistered) {
  EXPECT_EQ(registerById("f-1").get(), EffectReasonToken::followUpNotLive);
  schedule("f-1", inOneHour());
  EXPECT_EQ(registerPair(inOneHour() + 1s).get(), EffectReasonToken::followUpNotLive) << "another due time is stored";
  EXPECT_EQ(registerPair(inOneHour() + 999ms).get(), std::nullopt) << "stamps have whole seconds";
  tombstone("abc");
  expectBoth(EffectReasonToken::followUpNotLive);
  execute("UPDATE source_object SET tombstoned_at = NULL");
  execute("UPDATE follow_up SET due_at = 'soon'");
  EXPECT_EQ(registerById("f-1").get(), EffectReasonToken::followUpNotLive);
}

TEST_F(ReminderRegistration, SettledRefusalAnswersWithoutTouchingTheCenter) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  expectBoth(EffectReasonToken::notificationsDenied);
  EXPECT_EQ(center->callCount(Operation::add), 0U);
  EXPECT_FALSE(watcherWasStarted());
}

TEST_F(ReminderRegistration, WaitsForTheUserWithinItsBudget) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center->script(Operation::requestAuthorization, CenterBehaviour::answerAfter(19s));
  auto byId = registerById("f-1");
  auto byPair = registerPair(inOneHour());
  advance(19s);
  EXPECT_EQ(byId.get(), std::nullopt);
  EXPECT_EQ(byPair.get(), std::nullopt);
  EXPECT_EQ(center->callCount(Operation::requestAuthorization), 1U);
}

TEST_F(ReminderRegistration, NobodyAnsweringEndsTheBudgetAndStartsAPersistentWatcher) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  auto token = registerById("f-1");
  advance(20s - 1ns);
  EXPECT_FALSE(isReady(token));
  const auto checks = center->callCount(Operation::notificationSettings);
  advance(1ns);
  EXPECT_EQ(token.get(), EffectReasonToken::authorizationPending);
  EXPECT_TRUE(watcherWasStarted());
  EXPECT_GT(center->callCount(Operation::notificationSettings), checks) << "it checks at once";
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  advance(5s);
  EXPECT_THAT(log->messages(), testing::Not(Contains(testing::HasSubstr("ended")))) << "a refusal is not final for it";
}

TEST_F(ReminderRegistration, AnErrorWhileUndeterminedStartsAWatcherThatTakesRefusalAsFinal) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center->script(Operation::requestAuthorization, CenterBehaviour::fail());
  EXPECT_EQ(registerById("f-1").get(), EffectReasonToken::authorizationPending);
  EXPECT_TRUE(watcherWasStarted());
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  advance(5s);
  EXPECT_THAT(log->messages(), Contains("follow-up authorization watcher ended outcome=denied"));
}

TEST_F(ReminderRegistration, StoppingWhileWaitingAnswersAtOnce) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  auto token = registerById("f-1");
  const FollowUpScheduler copy = scheduler;
  copy.stopAuthorizationRecovery();
  settle();
  EXPECT_EQ(token.get(), EffectReasonToken::notificationsDenied) << "copies share what waits";
  center->answerHeld();
  advance(1min);
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(ReminderRegistration, ACenterThatRefusesOrThrowsIsTriedAgainLater) {
  schedule("f-1", inOneHour());
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  EXPECT_EQ(registerById("f-1").get(), EffectReasonToken::reminderNotRegistered);
  EXPECT_TRUE(watcherWasStarted());
  center->scriptCall(Operation::add, 1, CenterBehaviour::throwError());
  EXPECT_EQ(registerPair(inOneHour()).get(), EffectReasonToken::reminderNotRegistered);
  EXPECT_FALSE(isActive("f-1"));
  advance(5s);
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder")));
}

TEST_F(ReminderRegistration, ALateCenterLosesTheRaceAndItsWorkStillRunsToItsEnd) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::hang());
  auto byId = registerById("f-1");
  auto byPair = registerPair(inOneHour());
  advance(20s);
  EXPECT_EQ(byId.get(), EffectReasonToken::reminderNotRegistered);
  EXPECT_EQ(byPair.get(), EffectReasonToken::reminderNotRegistered);
  scheduler.stopAuthorizationRecovery();
  EXPECT_TRUE(isActive("f-1"));
  EXPECT_TRUE(isActive("3:abc|2:p1"));
  complete("f-1");
  center->answerHeld();
  settle();
  EXPECT_FALSE(isActive("f-1"));
  EXPECT_FALSE(isActive("3:abc|2:p1"));
  EXPECT_THAT(pending(), IsEmpty()) << "what is no longer live is withdrawn by the work itself";
}

TEST_F(ReminderRegistration, AFollowUpThatEndsOrMovesWhileTheCenterAcceptsIsWithdrawnAgain) {
  schedule("f-1", clock->now() + 3s);
  center->script(Operation::add, CenterBehaviour::answerAfter(5s));
  auto ended = registerById("f-1");
  complete("f-1");
  advance(5s);
  settle();
  EXPECT_EQ(ended.get(), EffectReasonToken::followUpNotLive);
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_THAT(delivered(), IsEmpty()) << "also when it was shown meanwhile";

  schedule("f-1", inOneHour());
  auto moved = registerPair(inOneHour());
  schedule("f-1", inOneHour() + 1h);
  advance(5s);
  EXPECT_EQ(moved.get(), EffectReasonToken::followUpNotLive);
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(ReminderRegistration, AnAnswerGivenTwiceRegistersOnce) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::answerTwice());
  center->script(Operation::notificationSettings, CenterBehaviour::answerTwice());
  expectBoth(std::nullopt);
  EXPECT_EQ(std::ranges::count(log->messages(),
                               "follow-up register key_hash=3defc6e63240 "
                               "due_minute=2026-03-04T10:15Z outcome=added"),
            1);
}

TEST_F(ReminderRegistration, ATaskOutlivesTheSchedulerItCameFrom) {
  schedule("f-1", inOneHour());
  auto other = std::make_unique<FollowUpScheduler>(makeScheduler(pool));
  auto task = other->registerReminder("f-1", "a title", inOneHour());
  auto reconciliation = other->reconcileReminders();
  other.reset();
  EXPECT_EQ(resultOf(std::move(task)), std::nullopt);
  resultOf(std::move(reconciliation));
  EXPECT_THAT(pending(), Contains(Pair("f-1", "Follow-up reminder")));
}

TEST_F(ReminderRegistration, AWatcherOutlivesItsSchedulerAndEndsWhenACopyStops) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::fail());
  auto other = std::make_unique<FollowUpScheduler>(makeScheduler(pool));
  EXPECT_EQ(resultOf(other->registerReminder("f-1", "a title", inOneHour())), EffectReasonToken::reminderNotRegistered);
  const FollowUpScheduler copy = *other;
  other.reset();
  advance(5s);
  copy.stopAuthorizationRecovery();
  settle();
  EXPECT_THAT(log->messages(), Contains("follow-up authorization watcher ended outcome=stopped"));
}

TEST(FollowUpRefusals, BlankTitlesComeFirstAndTheToleranceIsExact) {
  const Instant now = *parseInternetDateTime("2026-03-04T09:15:00Z");
  const auto refusal = [now](std::string_view title, Instant dueAt) {
    return FollowUpScheduler::followUpRefusal(title, dueAt, now);
  };
  EXPECT_EQ(refusal(" \n\u00a0\u2003", now - 1h), FollowUpRefusal::emptyTitle);
  EXPECT_EQ(refusal("", now + 1h), FollowUpRefusal::emptyTitle);
  EXPECT_EQ(refusal("call", now - 61s), FollowUpRefusal::dueInThePast);
  EXPECT_EQ(refusal("call", now - 60s - 1us), FollowUpRefusal::dueInThePast);
  EXPECT_EQ(refusal("call", now - 60s), std::nullopt);
  EXPECT_EQ(refusal("\u0301", now + 1h), std::nullopt) << "a lone combining mark is not white space";
  EXPECT_EQ(token(FollowUpRefusal::emptyTitle), EffectReasonToken::followUpRefused);
  EXPECT_EQ(token(FollowUpRefusal::dueInThePast), EffectReasonToken::followUpRefused);
  EXPECT_EQ(token(FollowUpRefusal::unknownFollowUp), EffectReasonToken::followUpNotLive);
}

TEST(EffectReasonTokens, StandAtThePositionsThatAreStored) {
  const auto at = [](int position) { return static_cast<EffectReasonToken>(position); };
  EXPECT_EQ(EffectReasonToken::reminderNotRegistered, at(0));
  EXPECT_EQ(EffectReasonToken::notificationsDenied, at(1));
  EXPECT_EQ(EffectReasonToken::attentionNotResolved, at(2));
  EXPECT_EQ(EffectReasonToken::followUpRefused, at(3));
  EXPECT_EQ(EffectReasonToken::followUpNotLive, at(9));
  EXPECT_EQ(EffectReasonToken::storeUnreadable, at(11));
  EXPECT_EQ(EffectReasonToken::authorizationPending, at(15));
}

} // namespace
} // namespace orvan
