#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"

namespace orvan {

Task<bool> FollowUpNotificationScheduling::authorizationIsUndetermined() {
  co_return false;
}

Task<NotificationKeys> FollowUpNotificationScheduling::deliveredRequestKeys() {
  co_return NotificationKeys{};
}

Task<void> FollowUpNotificationScheduling::removeDelivered(std::string /*key*/) {
  co_return;
}

Task<std::optional<NotificationKeys>> FollowUpNotificationScheduling::readPendingRequestKeys() {
  NotificationKeys keys = co_await pendingRequestKeys();
  co_return keys;
}

} // namespace orvan
