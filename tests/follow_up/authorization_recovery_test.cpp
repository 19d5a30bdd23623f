#include <atomic>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/execution.hpp>
#include <boost/asio/thread_pool.hpp>
#include <thread>

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_authorization_recovery.h"
#include "follow_up_store_test.h"

namespace orvan::internal {
namespace {

using namespace std::chrono_literals;
using Result = FollowUpAuthorizationRecovery::AuthorizationResult;

/// An event loop's executor that tells a test of every turn it is given, on the thread that gives it.
class WatchedExecutor {
 public:
  WatchedExecutor(boost::asio::io_context& loop, std::function<void()> onTurn)
      : loop_(&loop), onTurn_(std::make_shared<std::function<void()>>(std::move(onTurn))) {}

  boost::asio::execution_context& query(boost::asio::execution::context_t /*property*/) const noexcept {
    return *loop_;
  }
  static constexpr boost::asio::execution::blocking_t query(boost::asio::execution::blocking_t /*property*/) noexcept {
    return boost::asio::execution::blocking.never;
  }
  WatchedExecutor require(boost::asio::execution::blocking_t::never_t /*property*/) const { return *this; }

  template <typename Turn>
  void execute(Turn turn) const {
    (*onTurn_)();
    boost::asio::post(loop_->get_executor(), std::move(turn));
  }

  bool operator==(const WatchedExecutor&) const noexcept = default;

 private:
  boost::asio::io_context* loop_;
  std::shared_ptr<std::function<void()>> onTurn_;
};

class AuthorizationRecovery : public NotificationPortTest {
 protected:
  std::future<Result> wait(std::chrono::nanoseconds timeout = 20s) {
    return start(recovery->waitForAuthorization(notifications, timeout));
  }

  void hangRequests() { center->script(Operation::requestAuthorization, CenterBehaviour::hang()); }
  std::size_t questions() const { return center->callCount(Operation::requestAuthorization); }

  std::shared_ptr<FollowUpAuthorizationRecovery> recovery =
      std::make_shared<FollowUpAuthorizationRecovery>(loop.get_executor(), clock);
};

TEST_F(AuthorizationRecovery, TenThousandWaitersShareOneRequestAndResumeInOneTurnEach) {
  constexpr std::size_t count = 10000;
  hangRequests();
  std::size_t granted = 0;
  for (std::size_t index = 0; index < count; ++index) {
    boost::asio::co_spawn(loop, recovery->waitForAuthorization(notifications, 20s),
                          [&](std::exception_ptr, Result result) { granted += result == Result::granted ? 1 : 0; });
  }
  settle();
  center->answerHeld();
  loop.restart();
  std::size_t turns = 0;
  while (granted < count && loop.poll_one() != 0) {
    ++turns;
  }
  EXPECT_EQ(granted, count);
  constexpr std::size_t turnsOfTheRequestItself = 10;
  EXPECT_LE(turns, count + turnsOfTheRequestItself);
  EXPECT_EQ(questions(), 1U);
  settle();
  EXPECT_EQ(clock->timerCount(), 0U);
  EXPECT_TRUE(loop.stopped()) << "no timeout keeps the event loop";

  center->scriptCall(Operation::requestAuthorization, 1, CenterBehaviour::fail());
  center->scriptCall(Operation::requestAuthorization, 2, CenterBehaviour::throwError());
  EXPECT_EQ(wait().get(), Result::denied) << "an answered request is over, and one that fails has not granted";
  EXPECT_EQ(wait().get(), Result::denied);
}

TEST_F(AuthorizationRecovery, AWaiterGivesUpAtItsOwnTimeoutAndTheOthersWaitOn) {
  hangRequests();
  auto impatient = wait(1s);
  auto patient = wait(std::chrono::nanoseconds::max());
  advance(1s - 1ns);
  EXPECT_FALSE(isReady(impatient));
  advance(1ns);
  EXPECT_EQ(impatient.get(), Result::timedOut);
  EXPECT_FALSE(isReady(patient));
  answerHeld();
  EXPECT_EQ(patient.get(), Result::granted);
  EXPECT_EQ(questions(), 1U);
}

TEST_F(AuthorizationRecovery, StoppingResumesEveryWaiterAndLetsNothingStart) {
  hangRequests();
  auto first = wait();
  auto second = wait();
  recovery->stop();
  answerHeld();
  EXPECT_EQ(first.get(), Result::stopped);
  EXPECT_EQ(second.get(), Result::stopped);
  EXPECT_EQ(clock->timerCount(), 0U);

  EXPECT_EQ(wait().get(), Result::stopped);
  EXPECT_EQ(questions(), 1U) << "nothing is asked once stopped";
  EXPECT_FALSE(recovery->claimWatcher(true));
  EXPECT_FALSE(recovery->claimReconcile());
  const TaskHandle tooLate;
  recovery->installWatcherTask(tooLate);
  EXPECT_EQ(resultOf(sleepUntil(clock, clock->monotonicNow() + 1h, tooLate)), SleepEnd::cancelled);
}

TEST_F(AuthorizationRecovery, OneWatcherIsClaimedAtATimeAndARecheckReachesTheRunningOne) {
  EXPECT_TRUE(recovery->claimWatcher(false));
  EXPECT_FALSE(recovery->rechecksSettledAuthorization());
  EXPECT_FALSE(recovery->claimWatcher(true));
  EXPECT_FALSE(recovery->claimWatcher(false));
  EXPECT_TRUE(recovery->rechecksSettledAuthorization()) << "only the watcher's end takes it back";
  recovery->finishWatcher();
  EXPECT_TRUE(recovery->claimWatcher(false));
  EXPECT_FALSE(recovery->rechecksSettledAuthorization());
}

TEST_F(AuthorizationRecovery, IsReleasedWhileItsRequestStillRuns) {
  hangRequests();
  auto waiter = wait();
  const std::weak_ptr<FollowUpAuthorizationRecovery> released = recovery;
  recovery.reset();
  EXPECT_TRUE(released.expired()) << "neither the request nor the timeout keeps it";
  answerHeld();
  EXPECT_EQ(waiter.get(), Result::stopped);
}

TEST_F(AuthorizationRecovery, ResumesNobodyWhileItHoldsItsLock) {
  int heldLocks = 0;
  int turns = 0;
  const boost::asio::any_io_executor watched =
      WatchedExecutor{loop, [&] {
                        ++turns;
                        auto reading = std::async(std::launch::async, [this] { return recovery->isStopped(); });
                        heldLocks += reading.wait_for(2s) == std::future_status::ready ? 0 : 1;
                      }};
  const auto spawn = [&](auto task) {
    auto future = boost::asio::co_spawn(watched, std::move(task), boost::asio::use_future);
    settle();
    return future;
  };
  hangRequests();
  auto answered = spawn(recovery->waitForAuthorization(notifications, 20s));
  auto expired = spawn(recovery->waitForAuthorization(notifications, 1s));
  advance(1s);
  answerHeld();
  auto stopped = spawn(recovery->waitForAuthorization(notifications, 20s));
  ASSERT_TRUE(recovery->claimReconcile());
  auto drained = spawn(recovery->stopAndDrain());
  recovery->finishReconcile();
  settle();
  EXPECT_EQ(expired.get(), Result::timedOut);
  EXPECT_EQ(answered.get(), Result::granted);
  EXPECT_EQ(stopped.get(), Result::stopped);
  EXPECT_TRUE(isReady(drained));
  EXPECT_GE(turns, 4);
  EXPECT_EQ(heldLocks, 0);
}

TEST_F(AuthorizationRecovery, AnswersTimeoutsAndStoppingOnManyThreadsResumeEachWaiterOnce) {
  constexpr int count = 400;
  std::atomic<int> resumed = 0;
  boost::asio::thread_pool pool{4};
  center = std::make_shared<InMemoryNotificationCenter>(pool.get_executor(), clock);
  NotificationCenter::setCurrent(center);
  center->script(Operation::requestAuthorization, CenterBehaviour::answerAfter(1s));
  const auto threaded = std::make_shared<FollowUpAuthorizationRecovery>(pool.get_executor(), clock);
  for (int index = 0; index < count; ++index) {
    boost::asio::co_spawn(pool, threaded->waitForAuthorization(notifications, index % 2 == 0 ? 1s : 3s),
                          [&](std::exception_ptr, Result) { ++resumed; });
  }
  while (clock->timerCount() < count + 1) {
    std::this_thread::yield();
  }
  {
    const std::jthread stopping{[&] { threaded->stop(); }};
    clock->advance(2s);
  }
  pool.join();
  EXPECT_EQ(resumed, count);
  EXPECT_EQ(clock->timerCount(), 0U);
}

} // namespace
} // namespace orvan::internal
