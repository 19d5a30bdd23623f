#include "OrvanTestSupport/in_memory_notification_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <optional>

#include "OrvanTestSupport/manual_clock.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using Operation = InMemoryNotificationCenter::Operation;
using testing::ElementsAre;
using testing::IsEmpty;

class ShowsOnly final : public NotificationCenterDelegate {
 public:
  explicit ShowsOnly(std::string identifier) : identifier_(std::move(identifier)) {}

  void willPresent(std::shared_ptr<NotificationCenter> /*center*/, Notification notification,
                   std::function<void(PresentationOptions)> completionHandler) override {
    completionHandler(notification.request().identifier() == identifier_ ? PresentationOptions::banner
                                                                         : PresentationOptions{});
  }

 private:
  std::string identifier_;
};

class InMemoryCenter : public testing::Test {
 protected:
  void settle() {
    loop.restart();
    loop.poll();
  }

  bool add(std::string identifier, std::chrono::seconds delay, std::string title = "Call") {
    bool added = false;
    center->add(NotificationRequest{std::move(identifier), NotificationContent{std::move(title), {}},
                                    CalendarTrigger{userCalendarComponents(clock->now() + delay)}},
                [&](const std::exception_ptr& error) { added = !error; });
    settle();
    return added;
  }

  void advance(std::chrono::seconds duration) {
    clock->advance(duration);
    settle();
  }

  std::vector<std::string> pending() {
    std::vector<std::string> identifiers;
    center->getPendingNotificationRequests([&](const auto& requests) {
      for (const auto& request : requests) {
        identifiers.push_back(request.identifier());
      }
    });
    settle();
    return identifiers;
  }

  std::vector<std::string> delivered() {
    std::vector<std::string> identifiers;
    center->getDeliveredNotifications([&](const auto& notifications) {
      for (const auto& notification : notifications) {
        identifiers.push_back(notification.request().identifier());
      }
    });
    settle();
    return identifiers;
  }

  AuthorizationStatus status() {
    std::optional<AuthorizationStatus> status;
    center->getNotificationSettings([&](NotificationSettings settings) { status = settings.authorizationStatus(); });
    settle();
    return *status;
  }

  std::optional<bool> ask() {
    std::optional<bool> answer;
    center->requestAuthorization(AuthorizationOptions::alert,
                                 [&](bool granted, const std::exception_ptr&) { answer = granted; });
    settle();
    return answer;
  }

  boost::asio::io_context loop;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(Instant{500000h});
  std::shared_ptr<InMemoryNotificationCenter> center =
      std::make_shared<InMemoryNotificationCenter>(loop.get_executor(), clock);
};

TEST_F(InMemoryCenter, PendingRequestsAreDeliveredWhenTheirSecondHasCome) {
  EXPECT_TRUE(add("later", 60s));
  EXPECT_TRUE(add("soon", 10s));
  advance(9s);
  EXPECT_THAT(delivered(), IsEmpty());
  advance(1s);
  EXPECT_THAT(delivered(), ElementsAre("soon"));
  EXPECT_THAT(pending(), ElementsAre("later"));
  EXPECT_TRUE(add("overdue", -1s));
  EXPECT_THAT(delivered(), ElementsAre("overdue", "soon"));
}

TEST_F(InMemoryCenter, AddingUnderAPendingIdentifierReplacesTheRequest) {
  add("a", 10s);
  add("a", 60s);
  advance(10s);
  EXPECT_THAT(pending(), ElementsAre("a"));
  advance(50s);
  EXPECT_THAT(delivered(), ElementsAre("a"));
}

TEST_F(InMemoryCenter, RemovesByIdentifierFromTheSetThatIsNamedOnly) {
  add("shown", 1s);
  advance(1s);
  add("shown", 60s);
  add("other", 60s);
  center->removePendingNotificationRequests({"shown", "unknown"});
  EXPECT_THAT(pending(), ElementsAre("other"));
  EXPECT_THAT(delivered(), ElementsAre("shown"));
  center->removeDeliveredNotifications({"shown", "other"});
  EXPECT_THAT(pending(), ElementsAre("other"));
  EXPECT_THAT(delivered(), IsEmpty());
}

TEST_F(InMemoryCenter, ASetWallClockCountsOnceItIsLookedAt) {
  add("a", 3600s);
  clock->setWallClock(clock->now() + 2h);
  center->deliverDue();
  EXPECT_THAT(delivered(), ElementsAre("a"));
}

TEST_F(InMemoryCenter, AsksTheUserOnceAndKeepsTheAnswer) {
  EXPECT_EQ(status(), AuthorizationStatus::notDetermined);
  center->setUserAnswer(AuthorizationStatus::denied);
  EXPECT_EQ(ask(), false);
  EXPECT_EQ(status(), AuthorizationStatus::denied);
  center->setUserAnswer(AuthorizationStatus::authorized);
  EXPECT_EQ(ask(), false) << "a user who has decided is not asked again";
  center->setAuthorizationStatus(AuthorizationStatus::provisional);
  EXPECT_EQ(ask(), true);
}

TEST_F(InMemoryCenter, AnswersLateOrNotAtAllAsScripted) {
  center->scriptCall(Operation::requestAuthorization, 1, CenterBehaviour::answerAfter(5s));
  center->scriptCall(Operation::requestAuthorization, 2, CenterBehaviour::hang());
  std::vector<int> answers;
  for (int question = 1; question <= 2; ++question) {
    center->requestAuthorization(AuthorizationOptions::alert, [&answers, question](bool, const std::exception_ptr&) {
      answers.push_back(question);
    });
  }
  advance(5s);
  EXPECT_THAT(answers, ElementsAre(1));
  center->answerHeld();
  settle();
  EXPECT_THAT(answers, ElementsAre(1, 2));
}

TEST_F(InMemoryCenter, FailsTheScriptedCallAndNoOther) {
  center->scriptCall(Operation::add, 2, CenterBehaviour::fail());
  EXPECT_TRUE(add("a", 10s));
  EXPECT_FALSE(add("b", 10s));
  EXPECT_TRUE(add("c", 10s));
  EXPECT_THAT(pending(), ElementsAre("a", "c"));
  EXPECT_EQ(center->callCount(Operation::add), 3U);
}

TEST_F(InMemoryCenter, AnAnswerGivenTwiceCarriesTheRequestOutOnce) {
  center->script(Operation::add, CenterBehaviour::answerTwice());
  int answers = 0;
  center->add(NotificationRequest{"a", NotificationContent{"Call", {}},
                                  CalendarTrigger{userCalendarComponents(clock->now() + 10s)}},
              [&](const std::exception_ptr&) {
                ++answers;
                center->removePendingNotificationRequests({"a"});
              });
  settle();
  EXPECT_EQ(answers, 2);
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(InMemoryCenter, InFrontTheDelegateDecidesWhatIsShown) {
  const auto delegate = std::make_shared<ShowsOnly>("a");
  center->setDelegate(delegate);
  center->setForeground(true);
  add("a", 10s);
  add("b", 10s);
  advance(10s);
  EXPECT_THAT(center->presentations(),
              ElementsAre(Presentation{"a", PresentationOptions::banner}, Presentation{"b", PresentationOptions{}}));
  EXPECT_THAT(delivered(), ElementsAre("a"));
}

} // namespace
} // namespace orvan
