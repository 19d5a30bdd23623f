#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/mutex.h"

namespace orvan {

/// A clock that stands still until a test moves it. It drives the wall clock, the monotonic clock and every timer
/// started on it; nothing of it depends on the machine's time. All operations may be called from any thread.
///
/// A timer that comes due hands its wake-up to its executor: the test then lets that executor run. Until then the clock
/// holds whoever sleeps on it, and a sleeper usually holds the clock: a test that ends under sleepers drops their
/// timers.
class ManualClock final : public Clock, public std::enable_shared_from_this<ManualClock> {
 public:
  explicit ManualClock(Instant start);
  ~ManualClock() override;

  /// Moves both clocks on, and wakes the timers that came due, earliest first.
  void advance(std::chrono::nanoseconds duration);
  /// Sets the wall clock, as a user does: the monotonic clock and the timers do not notice.
  void setWallClock(Instant now);

  /// Wakes every sleeper now, with SleepEnd::cancelled.
  void cancelTimers();
  /// Forgets every wake-up that is waiting; it never comes. A coroutine that slept on one is unwound by its executor's
  /// event loop, in its next turn or when it goes, and not inside this call.
  void dropTimers();

  /// How many wake-ups are waiting, and when the earliest one is due.
  std::size_t timerCount() const;
  std::optional<std::chrono::nanoseconds> timeToNextTimer() const;

  Instant now() const override;
  MonotonicInstant monotonicNow() const override;
  std::shared_ptr<Timer> startTimer(MonotonicInstant due, Executor executor,
                                    std::move_only_function<void(SleepEnd)> wake) const override;

 private:
  class Waiting;

  /// When a timer is due, and as which of those it was started.
  using Place = std::pair<MonotonicInstant, std::uint64_t>;
  using Timers = std::map<Place, std::shared_ptr<Waiting>>;

  Instant wallNow() const ORVAN_REQUIRES(mutex_);

  mutable Mutex mutex_;
  Instant wallStart_ ORVAN_GUARDED_BY(mutex_);
  std::chrono::nanoseconds elapsed_ ORVAN_GUARDED_BY(mutex_){0};
  std::chrono::nanoseconds elapsedAtWallStart_ ORVAN_GUARDED_BY(mutex_){0};
  mutable std::uint64_t timersStarted_ ORVAN_GUARDED_BY(mutex_) = 0;
  mutable Timers timers_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
