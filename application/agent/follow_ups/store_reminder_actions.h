#pragma once

#include <string>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/log.h"
#include "OrvanPlatform/work_executor.h"
#include "application/agent/reminders/reminder_actions.h"
#include "application/session/session_settings.h"

namespace orvan {

/// What the user's word on a follow-up's reminder does: "Done" completes the follow-up in the store, a click opens the
/// person. The store is open only while one of these runs, on a thread of its own.
///
/// The destructor waits for what runs.
class StoreReminderActions final : public ReminderActions {
 public:
  /// `executor` is the reminders'.
  StoreReminderActions(Executor executor, SessionSettings settings, LogChannel log);

  void markDone(const NotificationRequest& reminder, std::move_only_function<void(DoneOutcome)> completion) override;
  void open(const NotificationRequest& reminder, const std::string& activationToken) override;
  void openAll(const std::string& activationToken) override;

 private:
  Executor executor_;
  SessionSettings settings_;
  LogChannel log_;
  WorkExecutor worker_;
};

} // namespace orvan
