#pragma once

#include <functional>
#include <optional>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Why an alarm wakes.
enum class WakeReason {
  /// The instant has come.
  instantCame,
  /// The clock was set or the time zone changed, perhaps while the machine slept: what was worked out from the wall
  /// clock has to be worked out anew.
  clockChanged,
};

/// Wakes whoever waits for a reading of the wall clock: one waiter, one instant. Used from its executor alone.
class WallClockAlarm {
 public:
  virtual ~WallClockAlarm() = default;

  /// `wake` is called on the executor and never within another call to the alarm, sometimes without need. Null ends the
  /// waking.
  virtual void setWake(std::function<void(WakeReason)> wake) = 0;

  /// Replaces the instant waited for; one that has passed has come. Without one, only changes wake.
  virtual void setFor(std::optional<Instant> instant) = 0;
};

} // namespace orvan
