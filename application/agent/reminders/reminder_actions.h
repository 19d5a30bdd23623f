#pragma once

#include <functional>
#include <string>

#include "OrvanPlatform/notification_center/notification_request.h"

namespace orvan {

/// What the user's word on the reminders of the agent's own application does beyond the reminders themselves. Used from
/// the reminders' executor alone; neither call blocks it.
class ReminderActions {
 public:
  enum class DoneOutcome {
    /// Written down, or done already, or there is nothing of the kind any more: the reminder has served.
    saved,
    notSaved,
  };

  virtual ~ReminderActions() = default;

  /// The user is done with what the reminder is about. Calls `completion` once, on the executor and never within this
  /// call.
  virtual void markDone(const NotificationRequest& reminder, std::move_only_function<void(DoneOutcome)> completion) = 0;

  /// Shows the user what the reminder is about. `activationToken` is empty when the desktop gave none.
  virtual void open(const NotificationRequest& reminder, const std::string& activationToken) = 0;
  /// The same for the popup that stands for many at once: shows the list.
  virtual void openAll(const std::string& activationToken) = 0;
};

} // namespace orvan
