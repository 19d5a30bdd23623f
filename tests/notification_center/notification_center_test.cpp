#include "OrvanPlatform/notification_center/notification_center.h"

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"
#include "tests/support/event_loop_test.h"

namespace orvan {
namespace {

Task<AuthorizationStatus> statusOf(std::shared_ptr<NotificationCenter> asked) {
  const auto settings = co_await asked->notificationSettings();
  co_return settings.authorizationStatus();
}

class AwaitingACenter : public EventLoopTest {
 protected:
  template <typename Result>
  std::error_code errorOf(Task<Result> task) {
    try {
      resultOf(std::move(task));
      return {};
    } catch (const Error& error) {
      return error.code();
    }
  }
};

TEST_F(AwaitingACenter, TheFirstOfTwoAnswersCountsAndAUserWhoHasDecidedIsNotAskedAgain) {
  center->script(Operation::requestAuthorization, CenterBehaviour::answerTwice());
  center->setUserAnswer(AuthorizationStatus::denied);
  EXPECT_FALSE(resultOf(center->authorizationGranted(AuthorizationOptions::alert)));
  center->setUserAnswer(AuthorizationStatus::authorized);
  EXPECT_FALSE(resultOf(center->authorizationGranted(AuthorizationOptions::alert)));
}

TEST_F(AwaitingACenter, ACenterThatThrowsOrDropsAQuestionFailsItAndOneThatKeepsItIsWaitedFor) {
  center->script(Operation::pendingRequests, CenterBehaviour::throwError());
  EXPECT_EQ(errorOf(center->pendingNotificationRequests()), NotificationCenterError::unavailable);
  center->script(Operation::deliveredNotifications, CenterBehaviour::fail());
  EXPECT_EQ(errorOf(center->deliveredNotifications()), NotificationCenterError::unanswered);
  center->script(Operation::deliveredNotifications, CenterBehaviour::hang());
  auto held = start(center->deliveredNotifications());
  EXPECT_FALSE(isReady(held));
  answerHeld();
  EXPECT_TRUE(held.get().empty());
}

TEST_F(AwaitingACenter, WithoutAnInstalledCenterEverythingIsDenied) {
  EXPECT_EQ(NotificationCenter::current(), center);
  NotificationCenter::setCurrent(nullptr);
  const auto absent = NotificationCenter::current();
  EXPECT_EQ(resultOf(statusOf(absent)), AuthorizationStatus::denied);
  EXPECT_EQ(errorOf(absent->added(request("a", clock->now()))), NotificationCenterError::unavailable);
}

} // namespace
} // namespace orvan
