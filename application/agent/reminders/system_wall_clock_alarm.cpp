#include "application/agent/reminders/system_wall_clock_alarm.h"

#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

using Descriptor = boost::asio::posix::stream_descriptor;

int newTimer() {
  const int timer = timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC);
  if (timer < 0) {
    throw Error({errno, std::generic_category()}, "making a timer");
  }
  return timer;
}

/// The file is replaced, not written, so its folder is watched. -1 when that cannot be.
int newWatch(const std::filesystem::path& file) noexcept {
  const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  constexpr std::uint32_t changes = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CLOSE_WRITE;
  if (watch >= 0 && inotify_add_watch(watch, file.parent_path().c_str(), changes) < 0) {
    close(watch);
    return -1;
  }
  return watch;
}

/// A time of zero would end the waiting.
timespec timeOf(Instant instant) {
  using std::chrono::nanoseconds;
  using std::chrono::seconds;
  const auto whole = std::chrono::floor<seconds>(instant);
  const auto rest = std::chrono::duration_cast<nanoseconds>(instant - whole);
  if (instant <= Instant{}) {
    return {.tv_sec = 0, .tv_nsec = 1};
  }
  return {.tv_sec = whole.time_since_epoch().count(), .tv_nsec = rest.count()};
}

} // namespace

class SystemWallClockAlarm::Waiting : public std::enable_shared_from_this<Waiting> {
 public:
  Waiting(const Executor& executor, const std::filesystem::path& zoneFile)
      : timer_(executor, newTimer()), zone_(executor), zoneName_(zoneFile.filename()) {
    if (const int watch = newWatch(zoneFile); watch >= 0) {
      zone_.assign(watch);
    }
  }

  void start() {
    arm();
    awaitTimer();
    if (zone_.is_open()) {
      awaitZone();
    }
  }

  void stop() noexcept {
    wake_ = nullptr;
    boost::system::error_code ignored;
    timer_.close(ignored);
    zone_.close(ignored);
  }

  void setWake(std::function<void(WakeReason)> wake) { wake_ = std::move(wake); }

  void setFor(std::optional<Instant> instant) {
    instant_ = instant;
    arm();
  }

 private:
  /// Without an instant it waits for the end of time, for the sake of being told when the clock is set.
  void arm() {
    const itimerspec spec{.it_interval = {}, .it_value = timeOf(instant_.value_or(latestInstant))};
    const int flags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
    if (timerfd_settime(timer_.native_handle(), flags, &spec, nullptr) == 0) {
      return;
    }
    if (errno != ECANCELED) {
      throw Error({errno, std::generic_category()}, "setting a timer");
    }
    // It is set, and the clock was too since it was last looked at.
    boost::asio::post(timer_.get_executor(), [self = shared_from_this()] { self->wake(WakeReason::clockChanged); });
  }

  void wake(WakeReason reason) const {
    if (wake_) {
      const auto kept = wake_; // It may replace itself.
      kept(reason);
    }
  }

  void awaitTimer() {
    timer_.async_wait(Descriptor::wait_read, [self = shared_from_this()](const boost::system::error_code& error) {
      if (error || !self->timer_.is_open()) {
        return;
      }
      self->awaitTimer();
      self->readTimer();
    });
  }

  void readTimer() {
    std::uint64_t times = 0;
    if (read(timer_.native_handle(), &times, sizeof times) == sizeof times) {
      return wake(WakeReason::instantCame);
    }
    if (errno == ECANCELED) {
      arm();
      wake(WakeReason::clockChanged);
    }
  }

  void awaitZone() {
    zone_.async_wait(Descriptor::wait_read, [self = shared_from_this()](const boost::system::error_code& error) {
      if (error || !self->zone_.is_open()) {
        return;
      }
      self->awaitZone();
      if (self->readZoneChanges()) {
        self->wake(WakeReason::clockChanged);
      }
    });
  }

  /// Whether one of the changes in the folder was the file's.
  bool readZoneChanges() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    bool isOurs = false;
    for (auto length = read(zone_.native_handle(), buffer.data(), buffer.size()); length > 0;
         length = read(zone_.native_handle(), buffer.data(), buffer.size())) {
      for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(length);) {
        inotify_event event{};
        std::memcpy(&event, buffer.data() + at, sizeof event);
        // Names are padded with zeros. An event without one tells of many that were lost.
        const std::string name(buffer.data() + at + sizeof event);
        isOurs = isOurs || event.len == 0 || name == zoneName_;
        at += sizeof event + event.len;
      }
    }
    return isOurs;
  }

  Descriptor timer_;
  Descriptor zone_;
  const std::string zoneName_;
  std::optional<Instant> instant_;
  std::function<void(WakeReason)> wake_;
};

SystemWallClockAlarm::SystemWallClockAlarm(const Executor& executor, const std::filesystem::path& zoneFile)
    : waiting_(std::make_shared<Waiting>(executor, zoneFile)) {
  waiting_->start();
}

SystemWallClockAlarm::~SystemWallClockAlarm() {
  waiting_->stop();
}

void SystemWallClockAlarm::setWake(std::function<void(WakeReason)> wake) {
  waiting_->setWake(std::move(wake));
}

void SystemWallClockAlarm::setFor(std::optional<Instant> instant) {
  waiting_->setFor(instant);
}

} // namespace orvan
