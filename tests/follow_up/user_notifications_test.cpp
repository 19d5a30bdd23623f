#include <cstdlib>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"
#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class UserNotifications : public NotificationPortTest {
 protected:
  void hold(std::string identifier, UserInfo userInfo) {
    resultOf(center->added(request(std::move(identifier), clock->now() + 1h, std::move(userInfo))));
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

TEST_F(UserNotifications, ReadsTheStatusAndLogsItAfterAsking) {
  struct Reading {
    AuthorizationStatus status;
    bool granted;
    const char* word;
  };
  for (const auto& [status, granted, word] : {Reading{AuthorizationStatus::notDetermined, false, "notDetermined"},
                                              Reading{AuthorizationStatus::denied, false, "denied"},
                                              Reading{AuthorizationStatus::authorized, true, "granted"},
                                              Reading{AuthorizationStatus::provisional, true, "provisional"},
                                              Reading{static_cast<AuthorizationStatus>(17), false, "denied"}}) {
    center->setAuthorizationStatus(status);
    center->setUserAnswer(status);
    EXPECT_EQ(resultOf(notifications->authorizationGranted()), granted) << word;
    EXPECT_EQ(resultOf(notifications->authorizationIsUndetermined()), status == AuthorizationStatus::notDetermined);
    EXPECT_EQ(resultOf(notifications->requestAuthorization()), granted) << word;
    EXPECT_EQ(log->messages().back(), std::string{"follow-up authorization result="} + word);
  }
}

TEST_F(UserNotifications, OfACenterThatFailsOnlyRegisteringThrowsAndErrorsAreLoggedByTheirKind) {
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  center->scriptCall(Operation::requestAuthorization, 1, CenterBehaviour::fail());
  center->scriptCall(Operation::requestAuthorization, 2, CenterBehaviour::throwError());
  EXPECT_THROW(resultOf(notifications->registerRequest("f-1", "Call", clock->now())), Error);
  EXPECT_FALSE(resultOf(notifications->requestAuthorization()));
  EXPECT_FALSE(resultOf(notifications->requestAuthorization()));
  EXPECT_THAT(log->messages(),
              ElementsAre("follow-up register key_hash=3defc6e63240 due_minute=2026-03-04T09:15Z outcome=failed "
                          "error=orvan::Error",
                          "follow-up authorization result=error domain=orvan.notification-center code=3",
                          "follow-up authorization result=error domain=orvan.notification-center code=1"));
  for (const auto question :
       {Operation::notificationSettings, Operation::pendingRequests, Operation::deliveredNotifications}) {
    center->script(question, CenterBehaviour::throwError());
  }
  EXPECT_FALSE(resultOf(notifications->authorizationGranted()));
  EXPECT_FALSE(resultOf(notifications->authorizationIsUndetermined()));
  EXPECT_TRUE(resultOf(notifications->pendingRequestKeys()).empty());
  EXPECT_EQ(resultOf(notifications->readPendingRequestKeys()), std::nullopt);
  EXPECT_TRUE(resultOf(notifications->deliveredRequestKeys()).empty());
}

TEST_F(UserNotifications, APortMayLeaveOutWhatItsPlatformLacks) {
  PlainPort port;
  EXPECT_FALSE(resultOf(port.authorizationIsUndetermined()));
  EXPECT_TRUE(resultOf(port.deliveredRequestKeys()).empty());
  EXPECT_NO_THROW(resultOf(port.removeDelivered("f-1")));
}

} // namespace
} // namespace orvan
