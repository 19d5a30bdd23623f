#include "OrvanPlatform/notification_center/notification_center_error.h"

#include <string>

namespace orvan {
namespace {

class Category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.notification-center"; }

  std::string message(int value) const override {
    switch (static_cast<NotificationCenterError>(value)) {
      case NotificationCenterError::unavailable:
        return "there is no notification centre";
      case NotificationCenterError::unanswered:
        return "the notification centre did not answer";
      case NotificationCenterError::refused:
        return "the notification centre does not take this request";
    }
    return "unknown";
  }
};

} // namespace

const std::error_category& notificationCenterErrorCategory() noexcept {
  static const Category category;
  return category;
}

std::error_code make_error_code(NotificationCenterError error) noexcept {
  return {static_cast<int>(error), notificationCenterErrorCategory()};
}

} // namespace orvan
