#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"

namespace orvan {

/// The machine's time since it was started, the time it was suspended included.
struct MonotonicClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<MonotonicClock>;
  static constexpr bool is_steady = true;

  static time_point now() noexcept;
};

/// A reading of the monotonic clock, which nobody can set and which measures budgets and sleeps. It says nothing about
/// due times.
using MonotonicInstant = MonotonicClock::time_point;

/// `instant` moved on by `length`, or the last instant there is.
MonotonicInstant monotonicInstantAfter(MonotonicInstant instant, std::chrono::nanoseconds length) noexcept;

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

/// The machine's own clocks. A timer does not wake a machine that is suspended: one that came due meanwhile elapses
/// within a second of the machine's return. One that sleeps for minutes costs nothing until its time has come.
class SystemClock final : public Clock {
 public:
  Instant now() const override;
  MonotonicInstant monotonicNow() const override;
  std::shared_ptr<Timer> startTimer(MonotonicInstant due, Executor executor,
                                    std::move_only_function<void(SleepEnd)> wake) const override;
};

} // namespace orvan
