#include <atomic>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/execution.hpp>
#include <boost/asio/thread_pool.hpp>
#include <thread>

#include "OrvanRelationshipAttention/follow_up/follow_up_authorization_recovery.h"
#include "event_loop_test.h"

namespace orvan {
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

class AuthorizationRecovery : public EventLoopTest {
 protected:
  std::future<Result> wait(std::chrono::nanoseconds timeout) {
    return start(recovery->waitForAuthorization(notifications, timeout));
  }

  std::size_t questions() const { return center->callCount(Operation::requestAuthorization); }

  std::shared_ptr<FollowUpAuthorizationRecovery> recovery =
      std::make_shared<FollowUpAuthorizationRecovery>(loop.get_executor(), clock);
};

TEST_F(AuthorizationRecovery, ManyWaitersShareOneRequestAndItsAnswer) {
  center->script(Operation::requestAuthorization, CenterBehaviour::answerAfter(5s));
  std::vector<std::future<Result>> waiters;
  for (int index = 0; index < 3; ++index) {
    waiters.push_back(wait(20s));
  }
  advance(5s);
  EXPECT_EQ(questions(), 1U);
  for (auto& waiter : waiters) {
    ASSERT_TRUE(isReady(waiter));
    EXPECT_EQ(waiter.get(), Result::granted);
  }
  advance(60s);

  center->setAuthorizationStatus(AuthorizationStatus::denied);
  auto later = wait(20s);
  advance(5s);
  EXPECT_EQ(later.get(), Result::denied);
  EXPECT_EQ(questions(), 2U) << "an answered request is over";
}

TEST_F(AuthorizationRecovery, AWaiterGivesUpAtItsOwnTimeoutAndTheOthersWaitOn) {
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  auto impatient = wait(1s);
  auto patient = wait(20s);
  advance(1s - 1ns);
  EXPECT_FALSE(isReady(impatient));
  advance(1ns);
  EXPECT_EQ(impatient.get(), Result::timedOut);
  EXPECT_FALSE(isReady(patient));
  center->answerHeld();
  settle();
  EXPECT_EQ(patient.get(), Result::granted);
  EXPECT_EQ(questions(), 1U);
}

TEST_F(AuthorizationRecovery, ACenterThatFailsOrThrowsHasNotGranted) {
  center->scriptCall(Operation::requestAuthorization, 1, CenterBehaviour::fail());
  center->scriptCall(Operation::requestAuthorization, 2, CenterBehaviour::throwError());
  center->scriptCall(Operation::requestAuthorization, 3, CenterBehaviour::answerTwice());
  EXPECT_EQ(wait(20s).get(), Result::denied);
  EXPECT_EQ(wait(20s).get(), Result::denied);
  EXPECT_EQ(wait(20s).get(), Result::granted);
}

TEST_F(AuthorizationRecovery, StoppingResumesWaitersAndCancelsTheWatcher) {
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  auto first = wait(20s);
  auto second = wait(20s);
  ASSERT_TRUE(recovery->claimWatcher(false));
  const TaskHandle watcher;
  recovery->installWatcherTask(watcher);
  auto sleep = start(sleepUntil(clock, clock->monotonicNow() + 1h, watcher));

  recovery->stop();
  settle();
  EXPECT_EQ(first.get(), Result::stopped);
  EXPECT_EQ(second.get(), Result::stopped);
  EXPECT_EQ(sleep.get(), SleepEnd::cancelled);
  center->answerHeld();
  advance(60s);

  EXPECT_EQ(wait(20s).get(), Result::stopped);
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
  EXPECT_TRUE(recovery->rechecksSettledAuthorization());
  EXPECT_FALSE(recovery->claimWatcher(false));
  EXPECT_TRUE(recovery->rechecksSettledAuthorization()) << "only the watcher's end takes it back";
  recovery->finishWatcher();
  EXPECT_TRUE(recovery->claimWatcher(false));
  EXPECT_FALSE(recovery->rechecksSettledAuthorization());
}

TEST_F(AuthorizationRecovery, OnePassHoldsTheSlotAndMayFinishItsItemWhileDraining) {
  EXPECT_TRUE(recovery->claimReconcile());
  EXPECT_FALSE(recovery->claimReconcile());
  EXPECT_TRUE(recovery->beginReconcileItem());
  auto drained = start(recovery->stopAndDrain());
  EXPECT_TRUE(recovery->mayContinueReconcile());
  recovery->endReconcileItem();
  EXPECT_FALSE(recovery->mayContinueReconcile());
  EXPECT_FALSE(recovery->beginReconcileItem());
  EXPECT_FALSE(isReady(drained)) << "the slot is still held";
  recovery->finishReconcile();
  settle();
  EXPECT_TRUE(isReady(drained));
  EXPECT_TRUE(isReady(start(recovery->stopAndDrain()))) << "nothing holds the slot";
}

TEST_F(AuthorizationRecovery, APassThatIsBetweenItemsStopsAtOnce) {
  ASSERT_TRUE(recovery->claimReconcile());
  recovery->stop();
  EXPECT_FALSE(recovery->mayContinueReconcile());
}

TEST_F(AuthorizationRecovery, IsReleasedWhileItsRequestStillRuns) {
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  auto waiter = wait(20s);
  const std::weak_ptr<FollowUpAuthorizationRecovery> released = recovery;
  recovery.reset();
  EXPECT_TRUE(released.expired()) << "neither the request nor the timeout keeps it";
  settle();
  EXPECT_EQ(waiter.get(), Result::stopped);
  center->answerHeld();
  advance(60s);
}

TEST_F(AuthorizationRecovery, TenThousandWaitersResumeInOneTurnEach) {
  constexpr std::size_t count = 10000;
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  std::vector<std::future<Result>> waiters;
  for (std::size_t index = 0; index < count; ++index) {
    waiters.push_back(
        boost::asio::co_spawn(loop, recovery->waitForAuthorization(notifications, 20s), boost::asio::use_future));
  }
  settle();
  center->answerHeld();
  constexpr std::size_t turnsOfTheRequestItself = 10;
  EXPECT_LE(settle(), count + turnsOfTheRequestItself);
  for (auto& waiter : waiters) {
    ASSERT_TRUE(isReady(waiter));
    EXPECT_EQ(waiter.get(), Result::granted);
  }
}

TEST_F(AuthorizationRecovery, ResumesNobodyWhileItHoldsItsLock) {
  int heldLocks = 0;
  int turns = 0;
  const auto probe = [&] {
    ++turns;
    auto reading = std::async(std::launch::async, [this] { return recovery->isStopped(); });
    heldLocks += reading.wait_for(2s) == std::future_status::ready ? 0 : 1;
  };
  const boost::asio::any_io_executor watched = WatchedExecutor{loop, probe};
  const auto spawn = [&](auto task) {
    return boost::asio::co_spawn(watched, std::move(task), boost::asio::use_future);
  };
  center->script(Operation::requestAuthorization, CenterBehaviour::hang());
  auto answered = spawn(recovery->waitForAuthorization(notifications, 20s));
  auto expired = spawn(recovery->waitForAuthorization(notifications, 1s));
  settle();
  advance(1s);
  center->answerHeld();
  settle();
  auto stopped = spawn(recovery->waitForAuthorization(notifications, 20s));
  ASSERT_TRUE(recovery->claimReconcile());
  settle();
  auto drained = spawn(recovery->stopAndDrain());
  settle();
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
  {
    boost::asio::thread_pool pool{4};
    const auto threadedCenter = std::make_shared<InMemoryNotificationCenter>(pool.get_executor(), clock);
    NotificationCenter::setCurrent(threadedCenter);
    threadedCenter->script(Operation::requestAuthorization, CenterBehaviour::answerAfter(1s));
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
    clock->advance(10s);
    pool.join();
    NotificationCenter::setCurrent(center);
  }
  EXPECT_EQ(resumed, count);
}

} // namespace
} // namespace orvan
