#include <cstdlib>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "event_loop_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class UserNotifications : public EventLoopTest {
 protected:
  void setStatus(AuthorizationStatus status) { center->setAuthorizationStatus(status); }

  void hold(std::string identifier, UserInfo userInfo) {
    resultOf(center->added(request(std::move(identifier), std::move(userInfo), clock->now() + 1h)));
  }
};

TEST_F(UserNotifications, AReminderIsMarkedAndDueAtItsSecondInTheUsersCalendar) {
  setenv("TZ", "Asia/Kathmandu", 1);
  setenv("LC_ALL", "en_US.UTF-8", 1);
  resultOf(notifications->registerRequest("f-1", "Call about the lease",
                                          *parseInternetDateTime("2026-03-05T09:41:59Z") + 900ms));
  const auto pending = resultOf(center->pendingNotificationRequests());
  EXPECT_THAT(pending, ElementsAre(NotificationRequest{
                           "f-1", NotificationContent{"Call about the lease", {{"orvan.follow-up.reminder", true}}},
                           CalendarTrigger{CalendarComponents{2026, 3, 5, 15, 26, 59}}}));
  EXPECT_THAT(log->messages(), ElementsAre("follow-up register key_hash=3defc6e63240 due_minute=2026-03-05T09:41Z "
                                           "outcome=added"));
  EXPECT_EQ(log->entries().front().category, "follow-up-scheduler");
  unsetenv("TZ");
}

TEST_F(UserNotifications, ARefusedReminderIsLoggedByItsErrorsTypeAndThrown) {
  center->script(Operation::add, CenterBehaviour::fail());
  auto registered = start(notifications->registerRequest("f-1", "Call", clock->now()));
  EXPECT_THROW(registered.get(), Error);
  EXPECT_THAT(log->messages(), ElementsAre("follow-up register key_hash=3defc6e63240 due_minute=2026-03-04T09:15Z "
                                           "outcome=failed error=orvan::Error"));
}

TEST_F(UserNotifications, OnlyOwnRequestsAreReported) {
  hold("marked", {{"orvan.follow-up.reminder", true}});
  hold("5:hello|3:abc", {});
  hold("fu-v25:x", {{"orvan.follow-up.reminder", false}});
  hold("5:hello|3:abcd", {});
  hold("false", {{"orvan.follow-up.reminder", false}});
  hold("number", {{"orvan.follow-up.reminder", std::int64_t{1}}});
  hold("text", {{"orvan.follow-up.reminder", std::string{"true"}}});
  hold("other", {{"another mark", true}});
  EXPECT_THAT(resultOf(notifications->pendingRequestKeys()),
              UnorderedElementsAre("marked", "5:hello|3:abc", "fu-v25:x"));
  EXPECT_TRUE(resultOf(notifications->deliveredRequestKeys()).empty());
  advance(1h);
  EXPECT_THAT(resultOf(notifications->deliveredRequestKeys()),
              UnorderedElementsAre("marked", "5:hello|3:abc", "fu-v25:x"));
}

TEST_F(UserNotifications, WithdrawingTouchesOnlyTheSetItNames) {
  hold("shown", {{"orvan.follow-up.reminder", true}});
  advance(1h);
  hold("shown", {{"orvan.follow-up.reminder", true}});
  resultOf(notifications->cancel("shown"));
  EXPECT_TRUE(resultOf(notifications->pendingRequestKeys()).empty());
  EXPECT_THAT(resultOf(notifications->deliveredRequestKeys()), ElementsAre("shown"));
  resultOf(notifications->removeDelivered("shown"));
  EXPECT_TRUE(resultOf(notifications->deliveredRequestKeys()).empty());
}

TEST_F(UserNotifications, ReadsTheStatusAsGrantedUndeterminedOrNeither) {
  const auto reading = [this](AuthorizationStatus status) {
    setStatus(status);
    return std::pair{resultOf(notifications->authorizationGranted()),
                     resultOf(notifications->authorizationIsUndetermined())};
  };
  EXPECT_EQ(reading(AuthorizationStatus::notDetermined), std::pair(false, true));
  EXPECT_EQ(reading(AuthorizationStatus::denied), std::pair(false, false));
  EXPECT_EQ(reading(AuthorizationStatus::authorized), std::pair(true, false));
  EXPECT_EQ(reading(AuthorizationStatus::provisional), std::pair(true, false));
  EXPECT_EQ(reading(static_cast<AuthorizationStatus>(17)), std::pair(false, false));
}

TEST_F(UserNotifications, AskingLogsTheStatusThatIsThenInForce) {
  for (const auto answer : {AuthorizationStatus::authorized, AuthorizationStatus::provisional,
                            AuthorizationStatus::denied, static_cast<AuthorizationStatus>(17)}) {
    setStatus(answer);
    resultOf(notifications->requestAuthorization());
  }
  center->setUserAnswer(AuthorizationStatus::notDetermined);
  setStatus(AuthorizationStatus::notDetermined);
  EXPECT_FALSE(resultOf(notifications->requestAuthorization()));
  EXPECT_THAT(log->messages(),
              ElementsAre("follow-up authorization result=granted", "follow-up authorization result=provisional",
                          "follow-up authorization result=denied", "follow-up authorization result=denied",
                          "follow-up authorization result=notDetermined"));
}

TEST_F(UserNotifications, AFailedQuestionIsLoggedWithDomainAndCodeAndReadsAsNotGranted) {
  center->scriptCall(Operation::requestAuthorization, 1, CenterBehaviour::fail());
  center->scriptCall(Operation::requestAuthorization, 2, CenterBehaviour::throwError());
  EXPECT_FALSE(resultOf(notifications->requestAuthorization()));
  EXPECT_FALSE(resultOf(notifications->requestAuthorization()));
  EXPECT_THAT(log->messages(),
              ElementsAre("follow-up authorization result=error domain=orvan.notification-center code=3",
                          "follow-up authorization result=error domain=orvan.notification-center code=1"));
}

TEST_F(UserNotifications, ACenterThatThrowsReadsAsSettledAndEmpty) {
  center->script(Operation::notificationSettings, CenterBehaviour::throwError());
  center->script(Operation::pendingRequests, CenterBehaviour::throwError());
  center->script(Operation::deliveredNotifications, CenterBehaviour::throwError());
  EXPECT_FALSE(resultOf(notifications->authorizationGranted()));
  EXPECT_FALSE(resultOf(notifications->authorizationIsUndetermined()));
  EXPECT_TRUE(resultOf(notifications->pendingRequestKeys()).empty());
  EXPECT_TRUE(resultOf(notifications->deliveredRequestKeys()).empty());
}

class FiveOperationsOnly final : public FollowUpNotificationScheduling {
 public:
  Task<bool> authorizationGranted() override { co_return true; }
  Task<bool> requestAuthorization() override { co_return true; }
  Task<void> registerRequest(std::string /*key*/, std::string /*title*/, Instant /*dueAt*/) override { co_return; }
  Task<NotificationKeys> pendingRequestKeys() override { co_return NotificationKeys{"f-1"}; }
  Task<void> cancel(std::string /*key*/) override { co_return; }
};

TEST_F(UserNotifications, APortMayLeaveOutWhatItsPlatformLacks) {
  FiveOperationsOnly port;
  EXPECT_FALSE(resultOf(port.authorizationIsUndetermined()));
  EXPECT_TRUE(resultOf(port.deliveredRequestKeys()).empty());
  EXPECT_NO_THROW(resultOf(port.removeDelivered("f-1")));
}

} // namespace
} // namespace orvan
