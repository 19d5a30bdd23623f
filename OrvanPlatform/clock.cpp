#include "OrvanPlatform/clock.h"

#include <boost/asio/steady_timer.hpp>

#include "OrvanPlatform/mutex.h"

namespace orvan {
namespace {

/// An Asio timer may not be started and cancelled at the same time; the lock keeps the two apart.
class SystemTimer final : public Timer, public std::enable_shared_from_this<SystemTimer> {
 public:
  SystemTimer(const Executor& executor, MonotonicInstant due) : timer_(executor, due) {}

  void start(std::move_only_function<void(SleepEnd)> wake) {
    const MutexLock lock{mutex_};
    timer_.async_wait([self = shared_from_this(), wake = std::move(wake)](boost::system::error_code error) mutable {
      wake(error ? SleepEnd::cancelled : SleepEnd::elapsed);
    });
  }

  void cancel() override {
    const MutexLock lock{mutex_};
    timer_.cancel();
  }

 private:
  Mutex mutex_;
  boost::asio::steady_timer timer_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace

Instant SystemClock::now() const {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

MonotonicInstant SystemClock::monotonicNow() const {
  return std::chrono::steady_clock::now();
}

std::shared_ptr<Timer> SystemClock::startTimer(MonotonicInstant due, Executor executor,
                                               std::move_only_function<void(SleepEnd)> wake) const {
  auto timer = std::make_shared<SystemTimer>(std::move(executor), due);
  timer->start(std::move(wake));
  return timer;
}

} // namespace orvan
