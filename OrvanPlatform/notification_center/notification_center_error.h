#pragma once

#include <system_error>

namespace orvan {

enum class NotificationCenterError {
  /// No notification centre is installed, or its service cannot be reached.
  unavailable = 1,
  /// The centre dropped the question without an answer.
  unanswered,
  /// The centre does not take this request (its trigger names no date, or it holds too many).
  refused,
};

const std::error_category& notificationCenterErrorCategory() noexcept;
std::error_code make_error_code(NotificationCenterError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::NotificationCenterError> : std::true_type {};
