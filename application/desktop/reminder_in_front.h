#pragma once

#include <functional>
#include <memory>
#include <string>

#include "OrvanPlatform/notification_center/notification_center.h"
#include "application/desktop/follow_ups_model.h"
#include "application/desktop/qt_executor.h"
#include "application/session/session_settings.h"

namespace orvan {

/// Decides about reminders that come due while the user looks at the window. One of the person whom they look at is
/// told there and pops up nowhere; others pop up as long as their follow-up is live.
///
/// The program owns it and makes it the centre's delegate while the window is in front. The loop and the model must
/// outlive the loop's running; once this is gone, questions still under way are answered with the popup.
class ReminderInFront final : public NotificationCenterDelegate, public std::enable_shared_from_this<ReminderInFront> {
 public:
  ReminderInFront(QtLoop& loop, SessionSettings settings, FollowUpsModel& followUps)
      : loop_(loop), settings_(std::move(settings)), followUps_(followUps) {}

  /// From any thread; returns at once.
  void willPresent(std::shared_ptr<NotificationCenter> center, Notification notification,
                   std::function<void(PresentationOptions)> completionHandler) override;

 private:
  using Answer = std::function<void(PresentationOptions)>;
  static Task<void> answer(std::shared_ptr<ReminderInFront> self, std::string followUpID, Answer answer);

  QtLoop& loop_;
  SessionSettings settings_;
  FollowUpsModel& followUps_;
};

} // namespace orvan
