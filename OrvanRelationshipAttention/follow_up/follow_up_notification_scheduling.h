#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"

namespace orvan {

/// Identifiers of notification requests.
using NotificationKeys = std::unordered_set<std::string>;

/// What the follow-up scheduler needs of a notification centre. UserNotificationsFollowUpScheduling is the one on the
/// application's own centre; an application may give the scheduler another.
///
/// Every operation is asynchronous, may be awaited from any executor, and only registerRequest() may throw. The object
/// lives until the last operation on it has ended.
class FollowUpNotificationScheduling {
 public:
  virtual ~FollowUpNotificationScheduling() = default;

  virtual Task<bool> authorizationGranted() = 0;
  /// Whether the user has still to decide. False unless overridden.
  virtual Task<bool> authorizationIsUndetermined();
  /// Asks the user, and gives the answer. Never called while an earlier call runs.
  virtual Task<bool> requestAuthorization() = 0;

  /// Schedules a notification that shows `title` at `dueAt`; returns once it is accepted, and throws when it is not. A
  /// pending request with the same key is replaced.
  virtual Task<void> registerRequest(std::string key, std::string title, Instant dueAt) = 0;
  /// The follow-up reminders that have yet to be shown, and no other requests of the application.
  virtual Task<NotificationKeys> pendingRequestKeys() = 0;
  /// Takes back a reminder that has yet to be shown. One that is not pending is passed over.
  virtual Task<void> cancel(std::string key) = 0;

  /// The follow-up reminders that the user can still see. None unless overridden.
  virtual Task<NotificationKeys> deliveredRequestKeys();
  /// Takes a shown reminder away. Does nothing unless overridden.
  virtual Task<void> removeDelivered(std::string key);

  /// pendingRequestKeys(), or nothing when what is pending cannot be told: from that nobody may conclude that nothing
  /// is. Always tells unless overridden.
  virtual Task<std::optional<NotificationKeys>> readPendingRequestKeys();
};

} // namespace orvan
