#pragma once

#include <functional>
#include <optional>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Wakes whoever waits for a reading of the wall clock: one waiter, one instant. Used from its executor alone.
class WallClockAlarm {
 public:
  virtual ~WallClockAlarm() = default;

  /// `wake` is called on the executor, never within another call to the alarm, each time the instant of setFor has come
  /// and each time anything happened that a due time may have to be worked out anew for: the clock was set, the time
  /// zone changed, the machine came back from sleep. It may be called without need. Null ends the waking.
  virtual void setWake(std::function<void()> wake) = 0;

  /// Replaces the instant waited for. One that has passed has come; without one only changes wake.
  virtual void setFor(std::optional<Instant> instant) = 0;
};

} // namespace orvan
