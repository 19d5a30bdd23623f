#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"

#include <cxxabi.h>

#include <boost/core/demangle.hpp>
#include <expected>
#include <optional>
#include <vector>

#include "OrvanPlatform/notification_center/notification_center.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_log.h"

namespace orvan {
namespace {

constexpr auto ownMark = "orvan.follow-up.reminder";

/// The centre's settings, or nothing when it has none to give.
Task<std::optional<AuthorizationStatus>> currentStatus() {
  try {
    const auto settings = co_await NotificationCenter::current()->notificationSettings();
    co_return settings.authorizationStatus();
  } catch (...) {
    co_return std::nullopt;
  }
}

NotificationRequest reminderRequest(std::string key, std::string title, Instant dueAt) {
  UserInfo userInfo;
  userInfo.emplace(ownMark, true);
  return NotificationRequest{std::move(key), NotificationContent{std::move(title), std::move(userInfo)},
                             CalendarTrigger{userCalendarComponents(dueAt)}};
}

bool carriesOwnMark(const NotificationRequest& request) {
  const UserInfo& userInfo = request.content().userInfo();
  const auto mark = userInfo.find(ownMark);
  const bool* value = mark == userInfo.end() ? nullptr : std::get_if<bool>(&mark->second);
  return value != nullptr && *value;
}

/// The identifier of a request that is a follow-up reminder. The centre holds the application's other requests too.
std::optional<std::string> ownedIdentifier(const NotificationRequest& request) {
  if (carriesOwnMark(request) || internal::isLegacyFollowUpKey(request.identifier())) {
    return request.identifier();
  }
  return std::nullopt;
}

void insertOwned(NotificationKeys& keys, const NotificationRequest& request) {
  if (auto identifier = ownedIdentifier(request)) {
    keys.insert(*std::move(identifier));
  }
}

std::string statusWord(std::optional<AuthorizationStatus> status, bool granted) {
  if (status.has_value()) {
    switch (*status) {
      case AuthorizationStatus::notDetermined:
        return "notDetermined";
      case AuthorizationStatus::denied:
        return "denied";
      case AuthorizationStatus::authorized:
        return "granted";
      case AuthorizationStatus::provisional:
        return "provisional";
    }
  }
  return granted ? "granted" : "denied";
}

/// The type's name of the exception being handled, which may be any type at all.
std::string currentErrorTypeName() {
  const std::type_info* type = abi::__cxa_current_exception_type();
  return type == nullptr ? "unknown" : boost::core::demangle(type->name());
}

/// Who reported an error, and under which number.
struct ErrorCode {
  std::string domain;
  long code;
};

ErrorCode currentErrorCode() {
  try {
    throw;
  } catch (const std::system_error& error) {
    return {.domain = error.code().category().name(), .code = error.code().value()};
  } catch (...) {
    return {.domain = currentErrorTypeName(), .code = 1};
  }
}

} // namespace

UserNotificationsFollowUpScheduling::UserNotificationsFollowUpScheduling(std::shared_ptr<LogSink> log)
    : logger_(internal::followUpLog(std::move(log))) {}

Task<bool> UserNotificationsFollowUpScheduling::authorizationGranted() {
  const auto status = co_await currentStatus();
  co_return status == AuthorizationStatus::authorized || status == AuthorizationStatus::provisional;
}

Task<bool> UserNotificationsFollowUpScheduling::authorizationIsUndetermined() {
  const auto status = co_await currentStatus();
  co_return status == AuthorizationStatus::notDetermined;
}

Task<bool> UserNotificationsFollowUpScheduling::requestAuthorization() {
  bool granted = false;
  try {
    const auto options = AuthorizationOptions::alert | AuthorizationOptions::sound;
    granted = co_await NotificationCenter::current()->authorizationGranted(options);
  } catch (...) {
    const ErrorCode error = currentErrorCode();
    logger_.write("follow-up authorization",
                  {{"result", "error"}, {"domain", error.domain}, {"code", std::to_string(error.code)}});
    co_return false;
  }
  const auto status = co_await currentStatus();
  logger_.write("follow-up authorization", {{"result", statusWord(status, granted)}});
  co_return granted;
}

Task<void> UserNotificationsFollowUpScheduling::registerRequest(std::string key, std::string title, Instant dueAt) {
  const std::string hash = internal::followUpKeyHash(key);
  const std::string minute = internal::iso8601Minute(dueAt);
  try {
    co_await NotificationCenter::current()->added(reminderRequest(std::move(key), std::move(title), dueAt));
  } catch (...) {
    logger_.write(
        "follow-up register",
        {{"key_hash", hash}, {"due_minute", minute}, {"outcome", "failed"}, {"error", currentErrorTypeName()}});
    throw;
  }
  logger_.write("follow-up register", {{"key_hash", hash}, {"due_minute", minute}, {"outcome", "added"}});
}

Task<std::optional<NotificationKeys>> UserNotificationsFollowUpScheduling::readPendingRequestKeys() {
  try {
    NotificationKeys keys;
    const auto requests = co_await NotificationCenter::current()->pendingNotificationRequests();
    for (const auto& request : requests) {
      insertOwned(keys, request);
    }
    co_return keys;
  } catch (...) {
    co_return std::nullopt;
  }
}

Task<NotificationKeys> UserNotificationsFollowUpScheduling::pendingRequestKeys() {
  auto keys = co_await readPendingRequestKeys();
  co_return std::move(keys).value_or(NotificationKeys{});
}

Task<NotificationKeys> UserNotificationsFollowUpScheduling::deliveredRequestKeys() {
  NotificationKeys keys;
  try {
    const auto notifications = co_await NotificationCenter::current()->deliveredNotifications();
    for (const auto& notification : notifications) {
      insertOwned(keys, notification.request());
    }
  } catch (...) { // NOLINT(bugprone-empty-catch): a centre that cannot say what it holds is taken to hold nothing.
  }
  co_return keys;
}

Task<void> UserNotificationsFollowUpScheduling::cancel(std::string key) {
  try {
    NotificationCenter::current()->removePendingNotificationRequests({std::move(key)});
  } catch (...) { // NOLINT(bugprone-empty-catch): withdrawing reports no outcome; the next reconciliation looks again.
  }
  co_return;
}

Task<void> UserNotificationsFollowUpScheduling::removeDelivered(std::string key) {
  try {
    NotificationCenter::current()->removeDeliveredNotifications({std::move(key)});
  } catch (...) { // NOLINT(bugprone-empty-catch): withdrawing reports no outcome; the next reconciliation looks again.
  }
  co_return;
}

} // namespace orvan
