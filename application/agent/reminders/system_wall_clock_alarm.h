#pragma once

#include <filesystem>
#include <memory>

#include "OrvanPlatform/executor.h"
#include "application/agent/reminders/wall_clock_alarm.h"

namespace orvan {

/// The machine's wall clock. It costs nothing while it waits: the system wakes it at the instant, when the clock is
/// set, after the machine slept past the instant, and when the file that says which time zone it is changes. It does
/// not wake a machine that sleeps. Without the right to watch that file's folder, a change of the zone is not noticed.
class SystemWallClockAlarm final : public WallClockAlarm {
 public:
  /// Throws Error with the system's reason when it has no timer to give.
  explicit SystemWallClockAlarm(const Executor& executor, const std::filesystem::path& zoneFile = "/etc/localtime");
  ~SystemWallClockAlarm() override;
  SystemWallClockAlarm(const SystemWallClockAlarm&) = delete;
  SystemWallClockAlarm& operator=(const SystemWallClockAlarm&) = delete;

  void setWake(std::function<void(WakeReason)> wake) override;
  void setFor(std::optional<Instant> instant) override;

 private:
  class Waiting;
  std::shared_ptr<Waiting> waiting_;
};

} // namespace orvan
