#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"

namespace orvan {

/// A reading of the monotonic clock, which never jumps and measures budgets and sleeps. It does not count the time a
/// machine is suspended, so it says nothing about due times.
using MonotonicInstant = std::chrono::steady_clock::time_point;

enum class SleepEnd { elapsed, cancelled };

/// One wake-up that a Clock has promised. Dropping it does not take the promise back.
class Timer {
 public:
  virtual ~Timer() = default;
  /// Wakes now, with SleepEnd::cancelled, unless the wake-up has happened or is on its way. From any thread.
  virtual void cancel() = 0;
};

/// The two clocks and every timer. All operations may be called from any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The wall clock, against which due times are judged. It can be set, and then jumps.
  virtual Instant now() const = 0;
  virtual MonotonicInstant monotonicNow() const = 0;

  /// Calls `wake` exactly once, on `executor` and never inside this call: with SleepEnd::elapsed once the monotonic
  /// clock has reached `due` (at once when it lies in the past), or with SleepEnd::cancelled. `executor` counts the
  /// pending wake-up as work.
  virtual std::shared_ptr<Timer> startTimer(MonotonicInstant due, Executor executor,
                                            std::move_only_function<void(SleepEnd)> wake) const = 0;
};

/// The machine's own clocks.
class SystemClock final : public Clock {
 public:
  Instant now() const override;
  MonotonicInstant monotonicNow() const override;
  std::shared_ptr<Timer> startTimer(MonotonicInstant due, Executor executor,
                                    std::move_only_function<void(SleepEnd)> wake) const override;
};

} // namespace orvan
