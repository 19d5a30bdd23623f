#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/notification_center/notification_request.h"
#include "OrvanPlatform/notification_center/notification_settings.h"

namespace orvan {

class NotificationCenter;

/// Asked by a centre when one of the application's notifications comes due while the application is in front.
class NotificationCenterDelegate {
 public:
  virtual ~NotificationCenterDelegate() = default;

  /// Decides how `notification` is presented, by calling `completionHandler` once, now or later, from any thread.
  virtual void willPresent(std::shared_ptr<NotificationCenter> center, Notification notification,
                           std::function<void(PresentationOptions)> completionHandler) = 0;
};

/// What shows an application's notifications: a service of the desktop, or one in memory for tests.
///
/// The operations in the first group are what a centre implements. Each takes a completion handler that the centre
/// calls once, from any thread, and each may throw instead of taking the question. The second group is what callers
/// use: the same operations as awaitables, which resume on the awaiting coroutine's executor and hold their caller
/// harmless when a centre answers twice (the first answer counts), throws, or drops a handler
/// (NotificationCenterError::unanswered). They know no time limit of their own.
///
/// A centre whose service is another process therefore owes its callers that
/// - each question is answered, or its handler dropped, within a bound of the centre's own, also when the service is
///   silent, slow or gone; only the question to the user may take as long as the user does, while the service is there;
/// - a service that cannot be reached is not a user who has decided against notifications: the status is the last that
///   was learned, or notDetermined;
/// - removals, for which nobody waits, have been handed over before the program ends.
///
/// All operations may be called from any thread. What is pending or delivered belongs to the centre and may survive the
/// process.
class NotificationCenter : public std::enable_shared_from_this<NotificationCenter> {
 public:
  virtual ~NotificationCenter() = default;

  /// The centre this process uses. When none was installed, one that denies everything and takes nothing.
  static std::shared_ptr<NotificationCenter> current();
  /// Installs `center` as the current one; null uninstalls.
  static void setCurrent(std::shared_ptr<NotificationCenter> center);

  virtual void getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) = 0;
  /// Asks the user, at most one question at a time. The answer is whether notifications are allowed, or an error.
  virtual void requestAuthorization(AuthorizationOptions options,
                                    std::function<void(bool granted, std::exception_ptr error)> completionHandler) = 0;
  /// Makes `request` pending; it replaces a pending one with the same identifier. A date that has passed is due at
  /// once.
  virtual void add(NotificationRequest request, std::function<void(std::exception_ptr error)> completionHandler) = 0;
  virtual void getPendingNotificationRequests(
      std::function<void(std::vector<NotificationRequest>)> completionHandler) = 0;
  virtual void getDeliveredNotifications(std::function<void(std::vector<Notification>)> completionHandler) = 0;
  /// Identifiers that are not pending, or not delivered, are passed over.
  virtual void removePendingNotificationRequests(std::vector<std::string> identifiers) = 0;
  virtual void removeDeliveredNotifications(std::vector<std::string> identifiers) = 0;

  /// Null when there is none or it is gone: a centre does not keep its delegate alive.
  virtual std::shared_ptr<NotificationCenterDelegate> delegate() const = 0;
  virtual void setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) = 0;

  Task<NotificationSettings> notificationSettings();
  Task<bool> authorizationGranted(AuthorizationOptions options);
  Task<void> added(NotificationRequest request);
  Task<std::vector<NotificationRequest>> pendingNotificationRequests();
  Task<std::vector<Notification>> deliveredNotifications();
};

} // namespace orvan
