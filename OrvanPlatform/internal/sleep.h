#pragma once

#include <memory>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/mutex.h"

namespace orvan::internal {

/// Names one background task to those who may end it early. Copies name the same task.
///
/// cancel() ends the sleep the task is in and every sleep it begins afterwards; nothing else that the task awaits is
/// disturbed, so the task itself decides how it ends. Cancelling a task that has ended does nothing. From any thread.
class TaskHandle {
 public:
  TaskHandle();
  void cancel() const;

 private:
  friend Task<SleepEnd> sleepUntil(std::shared_ptr<const Clock> clock, MonotonicInstant due, TaskHandle task);
  void watch(const std::shared_ptr<Timer>& sleep) const;

  struct State {
    Mutex mutex;
    bool cancelled ORVAN_GUARDED_BY(mutex) = false;
    std::weak_ptr<Timer> sleep ORVAN_GUARDED_BY(mutex);
  };
  std::shared_ptr<State> state_;
};

/// Sleeps until the monotonic clock reaches `due`, or until `task` is cancelled, and says which. Resumes on the
/// awaiting coroutine's executor.
Task<SleepEnd> sleepUntil(std::shared_ptr<const Clock> clock, MonotonicInstant due, TaskHandle task);
/// The same for a sleep that nobody cancels.
Task<SleepEnd> sleepUntil(std::shared_ptr<const Clock> clock, MonotonicInstant due);

} // namespace orvan::internal
