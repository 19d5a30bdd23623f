#pragma once

#include <functional>
#include <memory>
#include <string>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/notification_center/notification_center.h"
#include "OrvanStore/database_pool.h"

namespace orvan {

/// Shows a reminder that comes due while the application is in front only if its follow-up is still live. Everything
/// else is suppressed: reminders of follow-ups that ended, other notifications of the application, and what cannot be
/// checked because the store cannot be read.
///
/// The application owns it, by a shared pointer, for as long as it is to answer: the centre does not keep it. Once it
/// is gone, questions still under way are answered with suppression. Each question is answered exactly once.
class FollowUpNotificationDelegate final : public NotificationCenterDelegate,
                                           public std::enable_shared_from_this<FollowUpNotificationDelegate> {
 public:
  /// Questions are answered on `mainExecutor`; the store is read on `storeExecutor`, which the reading blocks.
  FollowUpNotificationDelegate(std::shared_ptr<DatabasePool> pool, Executor mainExecutor, Executor storeExecutor);

  /// Becomes the delegate of the application's current centre, unless another object is. May be called again.
  void installIfNeeded();

  /// Banner and sound, or nothing, for the notification with this identifier. Resumes on the awaiting coroutine's
  /// executor. The task may outlive the delegate.
  Task<PresentationOptions> presentationOptions(std::string reminderID) const;

  /// From any thread; returns at once.
  void willPresent(std::shared_ptr<NotificationCenter> center, Notification notification,
                   std::function<void(PresentationOptions)> completionHandler) override;

 private:
  static Task<void> answer(std::weak_ptr<const FollowUpNotificationDelegate> delegate, std::string reminderID,
                           std::function<void(PresentationOptions)> completionHandler);

  const std::shared_ptr<DatabasePool> pool_;
  const Executor mainExecutor_;
  const Executor storeExecutor_;
};

} // namespace orvan
