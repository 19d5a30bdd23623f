#include "OrvanPlatform/notification_center/notification_center.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <future>
#include <optional>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"
#include "OrvanTestSupport/in_memory_notification_center.h"
#include "OrvanTestSupport/manual_clock.h"

namespace orvan {
namespace {

using Operation = InMemoryNotificationCenter::Operation;

NotificationRequest requestAt(std::string identifier, Instant due) {
  return NotificationRequest{std::move(identifier), NotificationContent{"Follow-up reminder", {}},
                             CalendarTrigger{userCalendarComponents(due)}};
}

Task<int> statusOf(std::shared_ptr<NotificationCenter> center) {
  const auto settings = co_await center->notificationSettings();
  co_return static_cast<int>(settings.authorizationStatus());
}

class AwaitingACenter : public testing::Test {
 protected:
  void TearDown() override { center->dropHeld(); }

  /// Runs `task` as far as it gets.
  template <typename Result>
  std::future<Result> run(Task<Result> task) {
    auto future = boost::asio::co_spawn(loop, std::move(task), boost::asio::use_future);
    settle();
    return future;
  }

  void settle() {
    loop.restart();
    loop.poll();
  }

  template <typename Result>
  static std::error_code errorOf(std::future<Result>& future) {
    try {
      future.get();
      return {};
    } catch (const Error& error) {
      return error.code();
    }
  }

  template <typename Result>
  static bool isReady(const std::future<Result>& future) {
    return future.wait_for(std::chrono::seconds{0}) == std::future_status::ready;
  }

  boost::asio::io_context loop;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Instant{std::chrono::hours{500000}});
  std::shared_ptr<InMemoryNotificationCenter> center =
      std::make_shared<InMemoryNotificationCenter>(loop.get_executor(), clock);
};

TEST_F(AwaitingACenter, TheFirstOfTwoAnswersCounts) {
  center->script(Operation::requestAuthorization, CenterBehaviour::answerTwice());
  center->script(Operation::add, CenterBehaviour::answerTwice());
  EXPECT_TRUE(run(center->authorizationGranted(AuthorizationOptions::alert)).get());
  EXPECT_NO_THROW(run(center->added(requestAt("a", clock->now()))).get());
}

TEST_F(AwaitingACenter, ACenterThatThrowsFailsTheQuestionAndNothingElse) {
  center->script(Operation::pendingRequests, CenterBehaviour::throwError());
  auto answer = run(center->pendingNotificationRequests());
  EXPECT_EQ(errorOf(answer), NotificationCenterError::unavailable);
}

TEST_F(AwaitingACenter, ADroppedQuestionIsAnErrorAndAHeldOneWaits) {
  center->script(Operation::deliveredNotifications, CenterBehaviour::fail());
  auto dropped = run(center->deliveredNotifications());
  EXPECT_EQ(errorOf(dropped), NotificationCenterError::unanswered);

  center->script(Operation::deliveredNotifications, CenterBehaviour::hang());
  auto held = run(center->deliveredNotifications());
  EXPECT_FALSE(isReady(held));
  center->answerHeld();
  settle();
  EXPECT_TRUE(held.get().empty());
}

TEST_F(AwaitingACenter, WithoutAnInstalledCenterEverythingIsDenied) {
  const auto absent = NotificationCenter::current();
  EXPECT_EQ(run(statusOf(absent)).get(), static_cast<int>(AuthorizationStatus::denied));
  auto added = run(absent->added(requestAt("a", clock->now())));
  EXPECT_EQ(errorOf(added), NotificationCenterError::unavailable);

  NotificationCenter::setCurrent(center);
  EXPECT_EQ(NotificationCenter::current(), center);
  NotificationCenter::setCurrent(nullptr);
  EXPECT_NE(NotificationCenter::current(), nullptr);
}

TEST(PresentationOptions, HaveTheValuesThatDesktopServicesExchange) {
  EXPECT_EQ((PresentationOptions::banner | PresentationOptions::sound).rawValue(), 18U);
  EXPECT_EQ(PresentationOptions{}.rawValue(), 0U);
}

} // namespace
} // namespace orvan
