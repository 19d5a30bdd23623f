#include "OrvanTestSupport/in_memory_notification_center.h"

#include "tests/support/event_loop_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class InMemoryCenter : public EventLoopTest {
 protected:
  bool add(std::string identifier, std::chrono::seconds delay) {
    bool added = false;
    center->add(request(std::move(identifier), clock->now() + delay),
                [&](const std::exception_ptr& error) { added = !error; });
    settle();
    return added;
  }

  std::vector<std::string> pending() {
    std::vector<std::string> identifiers;
    for (const auto& held : resultOf(center->pendingNotificationRequests())) {
      identifiers.push_back(held.identifier());
    }
    return identifiers;
  }

  std::vector<std::string> delivered() {
    std::vector<std::string> identifiers;
    for (const auto& notification : resultOf(center->deliveredNotifications())) {
      identifiers.push_back(notification.request().identifier());
    }
    return identifiers;
  }
};

TEST_F(InMemoryCenter, DeliversEachRequestWhenItsSecondHasCome) {
  EXPECT_TRUE(add("later", 60s));
  EXPECT_TRUE(add("soon", 10s));
  EXPECT_TRUE(add("moved", 10s));
  EXPECT_TRUE(add("moved", 60s)) << "it replaces the one that is pending";
  advance(9s);
  EXPECT_THAT(delivered(), IsEmpty());
  advance(1s);
  EXPECT_THAT(delivered(), ElementsAre("soon"));
  EXPECT_THAT(pending(), ElementsAre("later", "moved"));
  EXPECT_TRUE(add("overdue", -1s));
  EXPECT_THAT(delivered(), ElementsAre("overdue", "soon"));
  clock->setWallClock(clock->now() + 2h);
  center->deliverDue();
  EXPECT_THAT(delivered(), ElementsAre("later", "moved", "overdue", "soon"));
}

TEST_F(InMemoryCenter, ADateBeyondTheReachOfATimerIsDeliveredToo) {
  constexpr auto beyond = std::chrono::days{300 * 365};
  EXPECT_TRUE(add("a", beyond));
  advance(std::chrono::days{365});
  EXPECT_THAT(pending(), ElementsAre("a"));
  clock->setWallClock(clock->now() + beyond);
  advance(std::chrono::days{365});
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

TEST_F(InMemoryCenter, AnAnswerGivenTwiceCarriesTheRequestOutOnce) {
  center->script(Operation::add, CenterBehaviour::answerTwice());
  int answers = 0;
  center->add(request("a", clock->now() + 10s), [&](const std::exception_ptr&) {
    ++answers;
    center->removePendingNotificationRequests({"a"});
  });
  settle();
  EXPECT_EQ(answers, 2);
  EXPECT_THAT(pending(), IsEmpty());
}

} // namespace
} // namespace orvan
