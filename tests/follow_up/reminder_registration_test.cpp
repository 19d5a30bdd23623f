#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class ReminderRegistration : public FollowUpStoreTest {
 protected:
  std::future<Token> registerPair(Instant dueAt) {
    return start(scheduler.registerReminder("abc", "p1", "a title", dueAt));
  }

  /// What both forms do must not depend on the form.
  void expectBoth(Token token) {
    EXPECT_EQ(registerById().get(), token);
    EXPECT_EQ(registerPair(inOneHour()).get(), token);
  }

  bool watcherWasStarted() const {
    return std::ranges::count(log->messages(), "follow-up authorization watcher started") == 1;
  }
  static bool isActive(const std::string& key) { return FollowUpRegistrationTracker::shared().hasActive({key}); }
};

TEST_F(ReminderRegistration, ALiveFollowUpGetsAReminderThatSaysWhatTheUserSaid) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::answerTwice());
  center->script(Operation::notificationSettings, CenterBehaviour::answerTwice());
  expectBoth(std::nullopt);
  EXPECT_EQ(pending().at("f-1"), "Follow-up reminder");
  execute("INSERT INTO capture_artifact (id, source_object_id) VALUES ('capture', 'abc')");
  for (const auto& [context, title] : std::map<std::string, std::string>{
           {"not JSON", "Follow-up reminder"},
           {R"({"user_follow_up": " "})", "Follow-up reminder"},
           {R"({"user_follow_up": "call  about\nthe lease"})", "Call about the lease"}}) {
    execute("UPDATE capture_artifact SET user_context = ?", context);
    expectBoth(std::nullopt);
    EXPECT_THAT(pending(), ElementsAre(Pair("3:abc|2:p1", title), Pair("f-1", title)));
  }
  EXPECT_EQ(log->messages().size(), 8U) << "an answer given twice registers once";
  EXPECT_FALSE(isActive("f-1") || isActive("3:abc|2:p1"));
  schedule("f-1", inOneHour() + 1h);
  EXPECT_EQ(registerById().get(), std::nullopt);
  advance(1h);
  EXPECT_THAT(delivered(), ElementsAre("3:abc|2:p1")) << "by id it is due when the row says";
}

TEST_F(ReminderRegistration, AFollowUpThatIsNotLiveIsNotRegistered) {
  EXPECT_EQ(registerById().get(), EffectReasonToken::followUpNotLive);
  schedule("f-1", inOneHour());
  EXPECT_EQ(registerPair(inOneHour() + 1s).get(), EffectReasonToken::followUpNotLive) << "another due time is stored";
  EXPECT_EQ(registerPair(inOneHour() + 999ms).get(), std::nullopt) << "stamps have whole seconds";
  tombstone("abc");
  expectBoth(EffectReasonToken::followUpNotLive);
  execute("UPDATE source_object SET tombstoned_at = NULL");
  execute("UPDATE follow_up SET due_at = 'soon'");
  expectBoth(EffectReasonToken::followUpNotLive);
}

TEST_F(ReminderRegistration, SettledRefusalAnswersWithoutTouchingTheCenter) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  expectBoth(EffectReasonToken::notificationsDenied);
  EXPECT_EQ(center->callCount(Operation::add), 0U);
  EXPECT_FALSE(watcherWasStarted());
}

TEST_F(ReminderRegistration, WaitsForTheUserUntilAnAnswerOrStopping) {
  schedule("f-1", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  center->script(Operation::requestAuthorization, CenterBehaviour::answerAfter(19s));
  auto byId = registerById();
  auto byPair = registerPair(inOneHour());
  advance(19s);
  EXPECT_EQ(byId.get(), std::nullopt);
  EXPECT_EQ(byPair.get(), std::nullopt);
  EXPECT_EQ(center->callCount(Operation::requestAuthorization), 1U);

  center->setAuthorizationStatus(AuthorizationStatus::notDetermined);
  auto stopped = registerById();
  const FollowUpScheduler copy = scheduler;
  copy.stopAuthorizationRecovery();
  settle();
  EXPECT_EQ(stopped.get(), EffectReasonToken::notificationsDenied) << "copies share what waits";
}

TEST_F(ReminderRegistration, ACenterThatRefusesOrThrowsIsTriedAgainLater) {
  schedule("f-1", inOneHour());
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  center->scriptCall(Operation::add, 2, CenterBehaviour::throwError());
  expectBoth(EffectReasonToken::reminderNotRegistered);
  EXPECT_TRUE(watcherWasStarted());
  EXPECT_FALSE(isActive("f-1"));
  advance(5s);
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder")));
}

TEST_F(ReminderRegistration, ALateCenterLosesTheRaceAndItsWorkStillRunsToItsEnd) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::hang());
  auto byId = registerById();
  auto byPair = registerPair(inOneHour());
  advance(20s);
  EXPECT_EQ(byId.get(), EffectReasonToken::reminderNotRegistered);
  EXPECT_EQ(byPair.get(), EffectReasonToken::reminderNotRegistered);
  scheduler.stopAuthorizationRecovery();
  EXPECT_TRUE(isActive("f-1") && isActive("3:abc|2:p1"));
  complete("f-1");
  answerHeld();
  EXPECT_FALSE(isActive("f-1") || isActive("3:abc|2:p1"));
  EXPECT_THAT(pending(), IsEmpty()) << "what is no longer live is withdrawn by the work itself";
}

TEST_F(ReminderRegistration, AFollowUpThatEndsOrMovesWhileTheCenterAcceptsIsWithdrawnAgain) {
  schedule("f-1", clock->now() + 3s);
  center->script(Operation::add, CenterBehaviour::answerAfter(5s));
  auto ended = registerById();
  complete("f-1");
  advance(5s);
  EXPECT_EQ(ended.get(), EffectReasonToken::followUpNotLive);
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_THAT(delivered(), IsEmpty()) << "also when it was shown meanwhile";

  schedule("f-1", inOneHour());
  auto movedByPair = registerPair(inOneHour());
  auto movedById = registerById();
  schedule("f-1", inOneHour() + 1h);
  advance(5s);
  EXPECT_EQ(movedByPair.get(), EffectReasonToken::followUpNotLive);
  EXPECT_EQ(movedById.get(), EffectReasonToken::followUpNotLive);
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(ReminderRegistration, ATaskOutlivesTheSchedulerItCameFromOnTheExecutorOfTheLibrary) {
  schedule("f-1", inOneHour());
  auto plain = std::make_unique<FollowUpScheduler>(pool, notifications, dispositions,
                                                   FollowUpScheduler::AuthorizationRecheck::standard());
  auto registered =
      boost::asio::co_spawn(loop, plain->registerReminder("f-1", "a title", inOneHour()), boost::asio::use_future);
  plain.reset();
  loop.restart();
  while (!isReady(registered)) {
    loop.run_one();
  }
  EXPECT_EQ(registered.get(), std::nullopt);
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder")));
}

TEST(FollowUpRefusals, BlankTitlesComeFirstAndTheToleranceIsExact) {
  const Instant now = *parseInternetDateTime("2026-03-04T09:15:00Z");
  const auto refusal = [now](std::string_view title, Instant dueAt) {
    return FollowUpScheduler::followUpRefusal(title, dueAt, now);
  };
  EXPECT_EQ(refusal(" \n\u00a0\u2003", now - 1h), FollowUpRefusal::emptyTitle);
  EXPECT_EQ(refusal("", now + 1h), FollowUpRefusal::emptyTitle);
  EXPECT_EQ(refusal("call", now - 60s - 1us), FollowUpRefusal::dueInThePast);
  EXPECT_EQ(refusal("call", now - 60s), std::nullopt);
  EXPECT_EQ(refusal("\u0301", now + 1h), std::nullopt) << "a lone combining mark is not white space";
}

TEST(EffectReasonTokens, StandAtThePositionsThatAreStored) {
  const auto positions = [](auto... tokens) { return std::vector{static_cast<int>(tokens)...}; };
  using enum EffectReasonToken;
  EXPECT_THAT(positions(reminderNotRegistered, notificationsDenied, attentionNotResolved, followUpRefused,
                        followUpNotLive, storeUnreadable, authorizationPending),
              ElementsAre(0, 1, 2, 3, 9, 11, 15));
  EXPECT_THAT(positions(token(FollowUpRefusal::emptyTitle), token(FollowUpRefusal::dueInThePast),
                        token(FollowUpRefusal::unknownFollowUp)),
              ElementsAre(3, 3, 9));
}

} // namespace
} // namespace orvan
