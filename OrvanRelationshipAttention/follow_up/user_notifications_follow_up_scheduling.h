#pragma once

#include <memory>

#include "OrvanPlatform/log.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"

namespace orvan {

/// Follow-up reminders on the application's current notification centre (NotificationCenter::current()), which is
/// looked up anew by every operation. Holds no state; copies are alike.
///
/// A reminder's request has the key as its identifier, the title, a mark by which it is known as ours, and a trigger at
/// the due second in the user's calendar and time zone. Errors of the centre read as not granted, as settled, or as
/// nothing held; registerRequest() alone throws them, and readPendingRequestKeys() alone tells them from nothing held.
class UserNotificationsFollowUpScheduling final : public FollowUpNotificationScheduling {
 public:
  explicit UserNotificationsFollowUpScheduling(std::shared_ptr<LogSink> log = systemLogSink());

  Task<bool> authorizationGranted() override;
  Task<bool> authorizationIsUndetermined() override;
  Task<bool> requestAuthorization() override;
  Task<void> registerRequest(std::string key, std::string title, Instant dueAt) override;
  Task<NotificationKeys> pendingRequestKeys() override;
  Task<void> cancel(std::string key) override;
  Task<NotificationKeys> deliveredRequestKeys() override;
  Task<void> removeDelivered(std::string key) override;
  Task<std::optional<NotificationKeys>> readPendingRequestKeys() override;

 private:
  LogChannel logger_;
};

} // namespace orvan
