#include "OrvanTestSupport/manual_clock.h"

#include <boost/asio/execution/outstanding_work.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/prefer.hpp>
#include <utility>
#include <vector>

namespace orvan {

class ManualClock::Waiting final : public Timer, public std::enable_shared_from_this<ManualClock::Waiting> {
 public:
  Waiting(std::weak_ptr<const ManualClock> clock, Place place, const Executor& executor,
          std::move_only_function<void(SleepEnd)> wake)
      : clock_(std::move(clock)),
        place_(place),
        executor_(boost::asio::prefer(executor, boost::asio::execution::outstanding_work.tracked)),
        wake_(std::move(wake)) {}

  void cancel() override {
    const auto clock = clock_.lock();
    if (clock == nullptr) {
      return;
    }
    Timers::node_type waiting;
    {
      const MutexLock lock{clock->mutex_};
      waiting = clock->timers_.extract(place_);
    }
    if (!waiting.empty()) {
      end(SleepEnd::cancelled);
    }
  }

  /// Only whoever took this out of the clock's timers calls it, so it happens once.
  void end(SleepEnd end) {
    const auto executor = std::exchange(executor_, {});
    boost::asio::post(executor, [wake = std::move(wake_), end]() mutable { wake(end); });
  }

 private:
  std::weak_ptr<const ManualClock> clock_;
  const Place place_;
  Executor executor_;
  std::move_only_function<void(SleepEnd)> wake_;
};

ManualClock::ManualClock(Instant start) : wallStart_(start) {}

ManualClock::~ManualClock() = default;

void ManualClock::advance(std::chrono::nanoseconds duration) {
  std::vector<std::shared_ptr<Waiting>> due;
  {
    const MutexLock lock{mutex_};
    elapsed_ += duration;
    const auto end = timers_.lower_bound(Place{MonotonicInstant{elapsed_}, timersStarted_});
    for (auto timer = timers_.begin(); timer != end; ++timer) {
      due.push_back(std::move(timer->second));
    }
    timers_.erase(timers_.begin(), end);
  }
  for (const auto& timer : due) {
    timer->end(SleepEnd::elapsed);
  }
}

void ManualClock::setWallClock(Instant now) {
  const MutexLock lock{mutex_};
  wallStart_ = now;
  elapsedAtWallStart_ = elapsed_;
}

void ManualClock::cancelTimers() {
  Timers cancelled;
  {
    const MutexLock lock{mutex_};
    cancelled.swap(timers_);
  }
  for (const auto& [place, timer] : cancelled) {
    timer->end(SleepEnd::cancelled);
  }
}

void ManualClock::dropTimers() {
  Timers dropped;
  const MutexLock lock{mutex_};
  dropped.swap(timers_);
}

std::size_t ManualClock::timerCount() const {
  const MutexLock lock{mutex_};
  return timers_.size();
}

std::optional<std::chrono::nanoseconds> ManualClock::timeToNextTimer() const {
  const MutexLock lock{mutex_};
  if (timers_.empty()) {
    return std::nullopt;
  }
  return timers_.begin()->first.first - MonotonicInstant{elapsed_};
}

Instant ManualClock::wallNow() const {
  return wallStart_ + std::chrono::floor<std::chrono::microseconds>(elapsed_ - elapsedAtWallStart_);
}

Instant ManualClock::now() const {
  const MutexLock lock{mutex_};
  return wallNow();
}

MonotonicInstant ManualClock::monotonicNow() const {
  const MutexLock lock{mutex_};
  return MonotonicInstant{elapsed_};
}

std::shared_ptr<Timer> ManualClock::startTimer(MonotonicInstant due, Executor executor,
                                               std::move_only_function<void(SleepEnd)> wake) const {
  std::shared_ptr<Waiting> timer;
  bool isDue = false;
  {
    const MutexLock lock{mutex_};
    const Place place{due, timersStarted_++};
    timer = std::make_shared<Waiting>(weak_from_this(), place, executor, std::move(wake));
    isDue = due <= MonotonicInstant{elapsed_};
    if (!isDue) {
      timers_.emplace(place, timer);
    }
  }
  if (isDue) {
    timer->end(SleepEnd::elapsed);
  }
  return timer;
}

} // namespace orvan
