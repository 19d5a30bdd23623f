#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>

#include "OrvanPlatform/user_calendar.h"

namespace orvan {

/// A value that travels with a notification. Never shown.
using UserInfoValue = std::variant<bool, std::int64_t, double, std::string>;
using UserInfo = std::map<std::string, UserInfoValue, std::less<>>;

/// What a notification says.
class NotificationContent {
 public:
  NotificationContent(std::string title, UserInfo userInfo)
      : title_(std::move(title)), userInfo_(std::move(userInfo)) {}

  const std::string& title() const noexcept { return title_; }
  const UserInfo& userInfo() const noexcept { return userInfo_; }

  bool operator==(const NotificationContent&) const = default;

 private:
  std::string title_;
  UserInfo userInfo_;
};

/// When a notification is due: once, at a date and time of day in the user's calendar and time zone. It is a reading of
/// the wall clock, not an instant: a centre may let a user who travels be reminded at the same local time.
class CalendarTrigger {
 public:
  explicit CalendarTrigger(CalendarComponents components) : components_(components) {}

  const CalendarComponents& components() const noexcept { return components_; }

  bool operator==(const CalendarTrigger&) const = default;

 private:
  CalendarComponents components_;
};

/// One notification that a centre is to show. The identifier names it among all requests of the application.
class NotificationRequest {
 public:
  NotificationRequest(std::string identifier, NotificationContent content, CalendarTrigger trigger)
      : identifier_(std::move(identifier)), content_(std::move(content)), trigger_(trigger) {}

  const std::string& identifier() const noexcept { return identifier_; }
  const NotificationContent& content() const noexcept { return content_; }
  const CalendarTrigger& trigger() const noexcept { return trigger_; }

  bool operator==(const NotificationRequest&) const = default;

 private:
  std::string identifier_;
  NotificationContent content_;
  CalendarTrigger trigger_;
};

/// A request that has come due.
class Notification {
 public:
  Notification(Instant date, NotificationRequest request) : date_(date), request_(std::move(request)) {}

  /// When the centre delivered it.
  Instant date() const noexcept { return date_; }
  const NotificationRequest& request() const noexcept { return request_; }

  bool operator==(const Notification&) const = default;

 private:
  Instant date_;
  NotificationRequest request_;
};

} // namespace orvan
