#pragma once

#include <memory>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/log.h"
#include "OrvanPlatform/work_executor.h"
#include "application/follow_ups/store_follow_ups.h"

namespace orvan {

/// Brings the reminders in line with the follow-ups of the agent's own store, on a thread of its own; the store is open
/// only meanwhile. When the store cannot be opened now, as while its key is being changed, this is tried again some
/// minutes later; that there is none is nothing to try again for.
///
/// Used from the thread of its executor. The destructor waits for a pass that runs, and that waits for the reminders:
/// the executor's thread must be able to serve them, or to drop what they were asked, until isRunning() is false.
class ReminderReconciliation {
 public:
  ReminderReconciliation(Executor executor, SessionSettings settings,
                         std::shared_ptr<FollowUpNotificationScheduling> centre, std::shared_ptr<const Clock> clock,
                         LogChannel log);
  ~ReminderReconciliation();
  ReminderReconciliation(const ReminderReconciliation&) = delete;
  ReminderReconciliation& operator=(const ReminderReconciliation&) = delete;

  /// Returns at once. While a pass runs, one more follows it.
  void reconcile();
  bool isRunning() const noexcept;
  /// No further pass begins.
  void stop();

 private:
  class Passes;

  WorkExecutor worker_;
  std::shared_ptr<Passes> passes_;
};

} // namespace orvan
