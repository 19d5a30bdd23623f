#pragma once

#include <memory>
#include <string>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/mutex.h"
#include "OrvanPlatform/notification_center/notification_center.h"
#include "application/agent/reminders/reminder_center.h"

namespace orvan {

/// A reminder center as the notification centre of one application in the same program. Each operation is carried out
/// on the center's executor, where the handlers are called; when the center has gone, they are dropped. Its delegate is
/// never asked: nothing of the agent stands in front of the user.
class ApplicationNotificationCenter final : public NotificationCenter {
 public:
  ApplicationNotificationCenter(const Executor& executor, std::weak_ptr<ReminderCenter> center, std::string application,
                                std::string displayName)
      : executor_(executor),
        center_(std::move(center)),
        application_(std::move(application)),
        displayName_(std::move(displayName)) {}

  void getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) override;
  /// Answers with what is decided now.
  void requestAuthorization(AuthorizationOptions options,
                            std::function<void(bool granted, std::exception_ptr error)> completionHandler) override;
  void add(NotificationRequest request, std::function<void(std::exception_ptr error)> completionHandler) override;
  void getPendingNotificationRequests(std::function<void(std::vector<NotificationRequest>)> completionHandler) override;
  void getDeliveredNotifications(std::function<void(std::vector<Notification>)> completionHandler) override;
  void removePendingNotificationRequests(std::vector<std::string> identifiers) override;
  void removeDeliveredNotifications(std::vector<std::string> identifiers) override;
  std::shared_ptr<NotificationCenterDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) override;

 private:
  using Step = std::function<void(ReminderCenter&)>;
  void onCenter(Step step, std::function<void(std::exception_ptr)> failed) const;

  const Executor executor_;
  const std::weak_ptr<ReminderCenter> center_;
  const std::string application_;
  const std::string displayName_;
  mutable Mutex mutex_;
  std::weak_ptr<NotificationCenterDelegate> delegate_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
