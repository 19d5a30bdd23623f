#include "OrvanPlatform/internal/sleep.h"

#include <boost/asio/this_coro.hpp>

#include "OrvanPlatform/internal/continuation.h"

namespace orvan::internal {

TaskHandle::TaskHandle() : state_(std::make_shared<State>()) {}

void TaskHandle::cancel() const {
  std::shared_ptr<Timer> sleep;
  {
    const MutexLock lock{state_->mutex};
    state_->cancelled = true;
    sleep = state_->sleep.lock();
  }
  if (sleep != nullptr) {
    sleep->cancel();
  }
}

void TaskHandle::watch(const std::shared_ptr<Timer>& sleep) const {
  bool cancelled = false;
  {
    const MutexLock lock{state_->mutex};
    state_->sleep = sleep;
    cancelled = state_->cancelled;
  }
  if (cancelled) {
    sleep->cancel();
  }
}

Task<SleepEnd> sleepUntil(std::shared_ptr<const Clock> clock, MonotonicInstant due, TaskHandle task) {
  const Executor executor = co_await boost::asio::this_coro::executor;
  co_return co_await suspended<SleepEnd>([clock, due, executor, task](Continuation<SleepEnd> sleeper) {
    const auto timer =
        clock->startTimer(due, executor, [sleeper = std::move(sleeper)](SleepEnd end) mutable { sleeper.resume(end); });
    task.watch(timer);
  });
}

Task<SleepEnd> sleepUntil(std::shared_ptr<const Clock> clock, MonotonicInstant due) {
  return sleepUntil(std::move(clock), due, TaskHandle{});
}

} // namespace orvan::internal
