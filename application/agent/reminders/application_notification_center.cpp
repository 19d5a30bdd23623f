#include "application/agent/reminders/application_notification_center.h"

#include <boost/asio/post.hpp>
#include <utility>

#include "OrvanPlatform/notification_center/notification_center_error.h"

namespace orvan {
namespace {

/// What cannot report an error drops its question.
void dropQuestion(const std::exception_ptr& /*error*/) {}

/// In the words of notification centres, which know of no file.
std::exception_ptr inCenterWords(const Error& error) {
  const auto code = error.code() == NotificationCenterError::refused ? NotificationCenterError::refused
                                                                     : NotificationCenterError::unavailable;
  return std::make_exception_ptr(Error{code, "asking the reminder center"});
}

} // namespace

void ApplicationNotificationCenter::onCenter(Step step, std::function<void(std::exception_ptr)> failed) const {
  boost::asio::post(executor_, [center = center_, step = std::move(step), failed = std::move(failed)] {
    const auto there = center.lock();
    if (there == nullptr) {
      return;
    }
    try {
      step(*there);
    } catch (const Error& error) {
      failed(inCenterWords(error));
    }
  });
}

void ApplicationNotificationCenter::getNotificationSettings(
    std::function<void(NotificationSettings)> completionHandler) {
  onCenter([application = application_, completionHandler = std::move(completionHandler)](
               ReminderCenter& center) { completionHandler(NotificationSettings{center.status(application)}); },
           dropQuestion);
}

void ApplicationNotificationCenter::requestAuthorization(
    AuthorizationOptions /*options*/, std::function<void(bool granted, std::exception_ptr error)> completionHandler) {
  onCenter(
      [application = application_, displayName = displayName_, completionHandler](ReminderCenter& center) {
        completionHandler(allowsReminders(center.requestAuthorization(application, displayName)), nullptr);
      },
      [completionHandler](std::exception_ptr error) { completionHandler(false, std::move(error)); });
}

void ApplicationNotificationCenter::add(NotificationRequest request,
                                        std::function<void(std::exception_ptr error)> completionHandler) {
  onCenter(
      [application = application_, displayName = displayName_, request = std::move(request),
       completionHandler](ReminderCenter& center) {
        center.add(application, displayName, request);
        completionHandler(nullptr);
      },
      completionHandler);
}

void ApplicationNotificationCenter::getPendingNotificationRequests(
    std::function<void(std::vector<NotificationRequest>)> completionHandler) {
  onCenter([application = application_, completionHandler = std::move(completionHandler)](
               ReminderCenter& center) { completionHandler(center.pending(application)); },
           dropQuestion);
}

void ApplicationNotificationCenter::getDeliveredNotifications(
    std::function<void(std::vector<Notification>)> completionHandler) {
  onCenter([application = application_, completionHandler = std::move(completionHandler)](
               ReminderCenter& center) { completionHandler(center.delivered(application)); },
           dropQuestion);
}

void ApplicationNotificationCenter::removePendingNotificationRequests(std::vector<std::string> identifiers) {
  onCenter([application = application_, identifiers = std::move(identifiers)](
               ReminderCenter& center) { center.removePending(application, identifiers); },
           dropQuestion);
}

void ApplicationNotificationCenter::removeDeliveredNotifications(std::vector<std::string> identifiers) {
  onCenter([application = application_, identifiers = std::move(identifiers)](
               ReminderCenter& center) { center.removeDelivered(application, identifiers); },
           dropQuestion);
}

std::shared_ptr<NotificationCenterDelegate> ApplicationNotificationCenter::delegate() const {
  const MutexLock lock{mutex_};
  return delegate_.lock();
}

void ApplicationNotificationCenter::setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) {
  const MutexLock lock{mutex_};
  delegate_ = std::move(delegate);
}

} // namespace orvan
