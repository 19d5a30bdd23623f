#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "OrvanPlatform/notification_center/notification_request.h"
#include "OrvanPlatform/notification_center/notification_settings.h"

namespace orvan {

/// Who stands in front of the user for an application, and is asked before one of its notifications is presented. Used
/// from the reminders' executor alone.
class Foreground {
 public:
  virtual ~Foreground() = default;

  virtual bool someoneStandsInFront(std::string_view application) const = 0;

  /// Asks how `notification` is to be presented, and calls `answer` once, on the executor and never within this call:
  /// with nothing when nobody stands in front any more, or nobody answered within two seconds.
  virtual void willPresent(const std::string& application, const Notification& notification,
                           std::move_only_function<void(std::optional<PresentationOptions>)> answer) = 0;
};

} // namespace orvan
