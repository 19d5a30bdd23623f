#include "OrvanPlatform/clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <ctime>
#include <optional>
#include <vector>

#include "OrvanPlatform/internal/sleep.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/manual_clock.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using internal::TaskHandle;

const Instant start = *parseInternetDateTime("2026-03-04T09:15:00Z");

class Clocks : public testing::Test {
 protected:
  void settle() {
    loop.restart();
    loop.poll();
  }

  void startTimer(const Clock& clock, std::chrono::nanoseconds delay, int name) {
    timers.push_back(clock.startTimer(clock.monotonicNow() + delay, loop.get_executor(),
                                      [this, name](SleepEnd end) { woken.emplace_back(name, end); }));
  }

  boost::asio::io_context loop;
  std::vector<std::shared_ptr<Timer>> timers;
  std::vector<std::pair<int, SleepEnd>> woken;
};

using Woken = std::vector<std::pair<int, SleepEnd>>;

Task<void> sleepAndTell(std::shared_ptr<const Clock> clock, std::chrono::nanoseconds length, TaskHandle task,
                        std::vector<SleepEnd>& ends) {
  const MonotonicInstant due = clock->monotonicNow() + length;
  ends.push_back(co_await sleepUntil(std::move(clock), due, std::move(task)));
}

TEST_F(Clocks, HandMovedTimersWakeInOrderOnTheirExecutorWhenTheirTimeHasCome) {
  const auto clock = std::make_shared<ManualClock>(start);
  startTimer(*clock, 3s, 3);
  startTimer(*clock, 1s, 1);
  startTimer(*clock, 0s, 0);
  EXPECT_TRUE(woken.empty()) << "never inside the call";
  clock->advance(1s - 1ns);
  settle();
  EXPECT_EQ(woken, (Woken{{0, SleepEnd::elapsed}}));
  EXPECT_EQ(clock->timeToNextTimer(), 1ns);
  clock->setWallClock(clock->now() + 24h);
  settle();
  EXPECT_EQ(woken.size(), 1U) << "the wall clock moves no timer";
  clock->advance(5s);
  settle();
  EXPECT_EQ(woken, (Woken{{0, SleepEnd::elapsed}, {1, SleepEnd::elapsed}, {3, SleepEnd::elapsed}}));
  EXPECT_EQ(clock->now(), start + 24h + 5s + 999999us);
}

TEST_F(Clocks, TheMonotonicClockCountsSuspensionAndItsSumsEndWithItsLastInstant) {
  timespec sinceStart{};
  clock_gettime(CLOCK_BOOTTIME, &sinceStart);
  const MonotonicInstant now = SystemClock{}.monotonicNow();
  EXPECT_GE(now.time_since_epoch(), std::chrono::seconds{sinceStart.tv_sec});
  EXPECT_EQ(monotonicInstantAfter(now, std::chrono::nanoseconds::max()), MonotonicInstant::max());
  EXPECT_EQ(monotonicInstantAfter(now, -1s), now - 1s);
}

TEST_F(Clocks, ACancelledTimerWakesOnceAndSaysSo) {
  const auto manual = std::make_shared<ManualClock>(start);
  startTimer(*manual, 1s, 1);
  timers.back()->cancel();
  timers.back()->cancel();
  manual->advance(2s);
  settle();
  EXPECT_EQ(woken, (Woken{{1, SleepEnd::cancelled}}));
  timers.back()->cancel();
  settle();
  EXPECT_EQ(woken.size(), 1U);

  const SystemClock system;
  startTimer(system, 1h, 2);
  startTimer(system, 0s, 3);
  timers.at(1)->cancel();
  timers.at(1)->cancel();
  loop.restart();
  loop.run();
  EXPECT_THAT(woken, testing::UnorderedElementsAre(std::pair{1, SleepEnd::cancelled}, std::pair{2, SleepEnd::cancelled},
                                                   std::pair{3, SleepEnd::elapsed}));
}

TEST_F(Clocks, CancellingATaskEndsTheSleepItIsInAndThoseItBeginsLater) {
  const auto clock = std::make_shared<ManualClock>(start);
  const TaskHandle task;
  std::vector<SleepEnd> ends;
  const auto sleep = [&] {
    boost::asio::co_spawn(loop, sleepAndTell(clock, 1h, task, ends), boost::asio::detached);
    settle();
  };
  sleep();
  EXPECT_TRUE(ends.empty());
  task.cancel();
  settle();
  EXPECT_EQ(ends, std::vector{SleepEnd::cancelled});
  sleep();
  EXPECT_EQ(ends, (std::vector{SleepEnd::cancelled, SleepEnd::cancelled}));
}

TEST_F(Clocks, AnEventLoopDoesNotEndUnderASleeper) {
  std::vector<SleepEnd> ends;
  boost::asio::co_spawn(loop, sleepAndTell(std::make_shared<SystemClock>(), 1ms, TaskHandle{}, ends),
                        boost::asio::detached);
  loop.run();
  EXPECT_EQ(ends, std::vector{SleepEnd::elapsed});

  const auto clock = std::make_shared<ManualClock>(start);
  boost::asio::co_spawn(loop, sleepAndTell(clock, 1s, TaskHandle{}, ends), boost::asio::detached);
  loop.restart();
  loop.poll();
  EXPECT_FALSE(loop.stopped()) << "a parked sleeper counts as work";
  clock->dropTimers();
  loop.poll();
  EXPECT_TRUE(loop.stopped()) << "and no longer once its timer is dropped";
  EXPECT_EQ(ends.size(), 1U);
}

} // namespace
} // namespace orvan
