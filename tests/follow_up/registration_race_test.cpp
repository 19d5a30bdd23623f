#include <array>
#include <atomic>
#include <boost/asio/thread_pool.hpp>
#include <thread>

#include "OrvanPlatform/internal/sleep.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_registration_tracker.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_registration_race.h"
#include "tests/support/event_loop_test.h"

namespace orvan::internal {
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
  std::future<LiveReminderRegistration> race(Task<LiveReminderRegistration> work) {
    return start(racingRegistrationDeadline(
        loop.get_executor(), clock, clock->monotonicNow() + 20s, [this] { ++finishes; }, std::move(work)));
  }

  int finishes = 0;
};

TEST_F(RegistrationRace, WorkThatEndsInTimeDecidesAndLeavesNoTimerBehind) {
  auto outcome = race(workTaking(clock, 19s));
  advance(18s);
  EXPECT_FALSE(isReady(outcome));
  advance(1s);
  ASSERT_TRUE(isReady(outcome));
  EXPECT_EQ(outcome.get(), LiveReminderRegistration::registered);
  EXPECT_EQ(finishes, 1);
  EXPECT_EQ(clock->timerCount(), 0U);
  EXPECT_TRUE(loop.stopped()) << "the deadline does not keep the event loop";
}

TEST_F(RegistrationRace, WorkThatFailsGivesItsErrorAndWorkThatLosesRunsOnToItsEnd) {
  EXPECT_THROW(race(workTaking(clock, 0s, true)).get(), std::runtime_error);
  EXPECT_EQ(finishes, 1);
  auto late = race(workTaking(clock, 30s, true));
  advance(20s);
  EXPECT_THROW(late.get(), FollowUpRegistrationTimeout);
  EXPECT_EQ(finishes, 1);
  advance(10s);
  EXPECT_EQ(finishes, 2);
}

TEST_F(RegistrationRace, ResumesEachCallerOnceHoweverCloseTheSidesCome) {
  constexpr std::size_t races = 2000;
  std::atomic<std::size_t> decided = 0;
  std::atomic<std::size_t> finished = 0;
  boost::asio::thread_pool pool{4};
  for (std::size_t index = 0; index < races; ++index) {
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
  EXPECT_EQ(decided, races);
  EXPECT_EQ(finished, races);
}

TEST(RegistrationTracker, CountsEachKeyUntilItsLastWorkHasEndedOnWhateverThread) {
  FollowUpRegistrationTracker tracker;
  tracker.end("a");
  tracker.begin("a");
  EXPECT_TRUE(tracker.hasActive({"a", "b"}));
  EXPECT_FALSE(tracker.hasActive({}));
  {
    std::array<std::jthread, 4> threads;
    for (auto& thread : threads) {
      thread = std::jthread([&tracker] {
        for (int round = 0; round < 2000; ++round) {
          tracker.begin("a");
          tracker.end("a");
        }
      });
    }
  }
  EXPECT_TRUE(tracker.hasActive({"a"}));
  tracker.end("a");
  EXPECT_FALSE(tracker.hasActive({"a", "b"}));
}

} // namespace
} // namespace orvan::internal
