#include <atomic>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <thread>

#include "OrvanPlatform/sleep.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_registration_race.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_registration_tracker.h"
#include "event_loop_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

Task<LiveReminderRegistration> workTaking(std::shared_ptr<const Clock> clock, std::chrono::nanoseconds length,
                                          bool fails = false) {
  const MonotonicInstant due = clock->monotonicNow() + length;
  co_await sleepUntil(std::move(clock), due);
  if (fails) {
    throw std::runtime_error("the centre refused");
  }
  co_return LiveReminderRegistration::registered;
}

class RegistrationRace : public EventLoopTest {
 protected:
  std::future<LiveReminderRegistration> race(std::chrono::nanoseconds budget, Task<LiveReminderRegistration> work) {
    return start(racingRegistrationDeadline(
        loop.get_executor(), clock, clock->monotonicNow() + budget, [this] { ++finishes; }, std::move(work)));
  }

  int finishes = 0;
};

TEST_F(RegistrationRace, WorkThatEndsInTimeDecidesAndTheDeadlineThenFindsTheMatterClosed) {
  auto outcome = race(20s, workTaking(clock, 19s));
  advance(18s);
  EXPECT_FALSE(isReady(outcome));
  advance(1s);
  ASSERT_TRUE(isReady(outcome));
  EXPECT_EQ(outcome.get(), LiveReminderRegistration::registered);
  advance(10s);
  EXPECT_EQ(finishes, 1);
}

TEST_F(RegistrationRace, WorkThatLosesRunsOnToItsEndAndReportsIt) {
  auto outcome = race(20s, workTaking(clock, 60s));
  advance(20s);
  ASSERT_TRUE(isReady(outcome));
  EXPECT_THROW(outcome.get(), FollowUpRegistrationTimeout);
  EXPECT_EQ(finishes, 0);
  advance(39s);
  EXPECT_EQ(finishes, 0);
  advance(1s);
  EXPECT_EQ(finishes, 1);
}

TEST_F(RegistrationRace, WorkThatFailsGivesItsErrorAndHasFinished) {
  auto inTime = race(20s, workTaking(clock, 0s, true));
  EXPECT_THROW(inTime.get(), std::runtime_error);
  EXPECT_EQ(finishes, 1);
  auto late = race(20s, workTaking(clock, 30s, true));
  advance(30s);
  EXPECT_THROW(late.get(), FollowUpRegistrationTimeout);
  EXPECT_EQ(finishes, 2);
}

TEST(RegistrationRaceOnThreads, ResumesEachCallerOnceHoweverCloseTheSidesCome) {
  constexpr int races = 2000;
  const auto clock = std::make_shared<ManualClock>(Instant{500000h});
  std::atomic<int> decided = 0;
  std::atomic<int> finished = 0;
  {
    boost::asio::thread_pool pool{4};
    for (int index = 0; index < races; ++index) {
      boost::asio::co_spawn(
          pool,
          racingRegistrationDeadline(
              pool.get_executor(), clock, clock->monotonicNow() + 1s, [&] { ++finished; }, workTaking(clock, 1s)),
          [&](std::exception_ptr, LiveReminderRegistration) { ++decided; });
    }
    while (clock->timerCount() < 2 * races) {
      std::this_thread::yield();
    }
    clock->advance(1s);
    pool.join();
  }
  EXPECT_EQ(decided, races);
  EXPECT_EQ(finished, races);
}

TEST(RegistrationTracker, CountsEachKeyUntilItsLastWorkHasEnded) {
  FollowUpRegistrationTracker tracker;
  tracker.end("a");
  tracker.begin("a");
  EXPECT_TRUE(tracker.hasActive({"a", "b"}));
  tracker.begin("a");
  tracker.end("a");
  EXPECT_TRUE(tracker.hasActive({"a"}));
  tracker.end("a");
  EXPECT_FALSE(tracker.hasActive({"a", "b"}));
  EXPECT_FALSE(tracker.hasActive({}));
}

TEST(RegistrationTracker, LosesNoCountAmongThreads) {
  constexpr int rounds = 2000;
  FollowUpRegistrationTracker tracker;
  {
    std::vector<std::jthread> threads;
    for (int index = 0; index < 4; ++index) {
      threads.emplace_back([&tracker] {
        for (int round = 0; round < rounds; ++round) {
          tracker.begin("a");
          EXPECT_TRUE(tracker.hasActive({"a"}));
          tracker.end("a");
        }
      });
    }
  }
  EXPECT_FALSE(tracker.hasActive({"a"}));
}

} // namespace
} // namespace orvan
