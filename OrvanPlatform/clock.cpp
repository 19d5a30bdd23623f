#include "OrvanPlatform/clock.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <ctime>

#include "OrvanPlatform/mutex.h"

namespace orvan {
namespace {

/// The operating system's waits leave out the time a machine is suspended, so a long one is made of short ones, with a
/// look at the clock after each.
struct ShortWaits {
  static MonotonicClock::duration to_wait_duration(const MonotonicClock::duration& length) {
    return std::min<MonotonicClock::duration>(length, std::chrono::seconds{1});
  }
  static MonotonicClock::duration to_wait_duration(const MonotonicInstant& due) {
    return to_wait_duration(due - MonotonicClock::now());
  }
};

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
  boost::asio::basic_waitable_timer<MonotonicClock, ShortWaits> timer_ ORVAN_GUARDED_BY(mutex_);
};

/// A descriptor that can be read once the clock has reached `due`; negative when the system gives none.
int descriptorReadyAt(MonotonicInstant due) noexcept {
  const int descriptor = timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK);
  const auto whole = std::chrono::floor<std::chrono::seconds>(due.time_since_epoch());
  itimerspec once{};
  once.it_value.tv_sec = whole.count();
  once.it_value.tv_nsec = (due.time_since_epoch() - whole).count();
  if (descriptor >= 0 && timerfd_settime(descriptor, TFD_TIMER_ABSTIME, &once, nullptr) != 0) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

/// Leaves the counting to the kernel, suspension included, so that nothing wakes before it is time. It costs a
/// descriptor, and a process has few of them.
class LongTimer final : public Timer, public std::enable_shared_from_this<LongTimer> {
 public:
  LongTimer(const Executor& executor, int descriptor) : timer_(executor, descriptor) {}

  void start(std::move_only_function<void(SleepEnd)> wake) {
    const MutexLock lock{mutex_};
    timer_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                      [self = shared_from_this(), wake = std::move(wake)](boost::system::error_code error) mutable {
                        wake(error ? SleepEnd::cancelled : SleepEnd::elapsed);
                      });
  }

  void cancel() override {
    const MutexLock lock{mutex_};
    timer_.cancel();
  }

 private:
  Mutex mutex_;
  boost::asio::posix::stream_descriptor timer_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace

MonotonicClock::time_point MonotonicClock::now() noexcept {
  timespec sinceStart{};
  clock_gettime(CLOCK_BOOTTIME, &sinceStart);
  return time_point{std::chrono::seconds{sinceStart.tv_sec} + std::chrono::nanoseconds{sinceStart.tv_nsec}};
}

MonotonicInstant monotonicInstantAfter(MonotonicInstant instant, std::chrono::nanoseconds length) noexcept {
  const bool isTooFar = length > std::chrono::nanoseconds::zero() && instant > MonotonicInstant::max() - length;
  return isTooFar ? MonotonicInstant::max() : instant + length;
}

Instant SystemClock::now() const {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

MonotonicInstant SystemClock::monotonicNow() const {
  return MonotonicClock::now();
}

std::shared_ptr<Timer> SystemClock::startTimer(MonotonicInstant due, Executor executor,
                                               std::move_only_function<void(SleepEnd)> wake) const {
  constexpr std::chrono::minutes longSleep{1};
  const bool isLong = due > monotonicInstantAfter(monotonicNow(), longSleep);
  if (const int descriptor = isLong ? descriptorReadyAt(due) : -1; descriptor >= 0) {
    auto timer = std::make_shared<LongTimer>(executor, descriptor);
    timer->start(std::move(wake));
    return timer;
  }
  auto timer = std::make_shared<SystemTimer>(std::move(executor), due);
  timer->start(std::move(wake));
  return timer;
}

} // namespace orvan
