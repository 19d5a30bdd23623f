#include "OrvanRelationshipAttention/follow_up/internal/follow_up_registration_race.h"

#include <boost/asio/detached.hpp>
#include <expected>
#include <optional>

#include "OrvanPlatform/internal/continuation.h"
#include "OrvanPlatform/internal/sleep.h"
#include "OrvanPlatform/mutex.h"

namespace orvan::internal {
namespace {

using WorkOutcome = std::expected<LiveReminderRegistration, std::exception_ptr>;

/// Which of the two sides came first. The first to claim decides the outcome; the other finds the matter closed.
class FollowUpRegistrationDeadline {
 public:
  explicit FollowUpRegistrationDeadline(Continuation<WorkOutcome> caller) : caller_(std::move(caller)) {}

  void finish(WorkOutcome outcome) {
    if (claim()) {
      caller_.resume(std::move(outcome));
    }
  }

 private:
  bool claim() {
    const MutexLock lock{mutex_};
    return !std::exchange(claimed_, true);
  }

  Mutex mutex_;
  bool claimed_ ORVAN_GUARDED_BY(mutex_) = false;
  /// Touched by the claimant alone.
  Continuation<WorkOutcome> caller_;
};

/// A sleep that ends early counts as the deadline too; only the work's own end is known to find the matter closed.
Task<void> expire(std::shared_ptr<FollowUpRegistrationDeadline> race, std::shared_ptr<const Clock> clock,
                  MonotonicInstant deadline, TaskHandle timer) {
  co_await sleepUntil(std::move(clock), deadline, std::move(timer));
  race->finish(std::unexpected{std::make_exception_ptr(FollowUpRegistrationTimeout{})});
}

Task<WorkOutcome> workOutcome(Task<LiveReminderRegistration> work) {
  try {
    co_return co_await std::move(work);
  } catch (...) {
    co_return std::unexpected{std::current_exception()};
  }
}

/// `timer` is cancelled once the race is decided: a sleeper keeps an event loop from ending.
Task<void> carryOut(std::shared_ptr<FollowUpRegistrationDeadline> race, TaskHandle timer,
                    std::function<void()> onWorkFinished, Task<LiveReminderRegistration> work) {
  WorkOutcome outcome = co_await workOutcome(std::move(work));
  race->finish(std::move(outcome));
  timer.cancel();
  onWorkFinished();
}

} // namespace

FollowUpRegistrationBudget::FollowUpRegistrationBudget(std::shared_ptr<const Clock> clock,
                                                       std::chrono::nanoseconds timeout)
    : clock_(std::move(clock)), deadline_(monotonicInstantAfter(clock_->monotonicNow(), timeout)) {}

Task<LiveReminderRegistration> racingRegistrationDeadline(Executor executor, std::shared_ptr<const Clock> clock,
                                                          MonotonicInstant deadline,
                                                          std::function<void()> onWorkFinished,
                                                          Task<LiveReminderRegistration> work) {
  auto start = [executor, clock, deadline, onWorkFinished = std::move(onWorkFinished),
                work = std::move(work)](Continuation<WorkOutcome> caller) mutable {
    const auto race = std::make_shared<FollowUpRegistrationDeadline>(std::move(caller));
    const TaskHandle timer;
    boost::asio::co_spawn(executor, expire(race, clock, deadline, timer), boost::asio::detached);
    boost::asio::co_spawn(executor, carryOut(race, timer, std::move(onWorkFinished), std::move(work)),
                          boost::asio::detached);
  };
  WorkOutcome outcome = co_await suspended<WorkOutcome>(std::move(start));
  if (!outcome.has_value()) {
    std::rethrow_exception(outcome.error());
  }
  co_return *outcome;
}

} // namespace orvan::internal
