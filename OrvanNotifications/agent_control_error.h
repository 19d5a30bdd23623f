#pragma once

#include <system_error>

namespace orvan {

/// Why the reminder service did not do what its user's own tools asked of it.
enum class AgentControlError {
  /// There is no bus of the user's session.
  noBus = 1,
  /// The service does not run and cannot be started.
  noAgent,
  /// It did not answer in time.
  tooSlow,
  /// It ended, or the bus did, before it answered.
  left,
  /// It does not take what was asked.
  refused,
  /// The key of its file cannot be read now.
  locked,
  /// Its file cannot be used.
  unusable,
  /// No service of the desktop shows notifications.
  noNotificationService,
  /// It belongs to another user.
  notYours,
  /// It answered with something else: it is of another version, or has a fault.
  failed,
};

const std::error_category& agentControlErrorCategory() noexcept;
std::error_code make_error_code(AgentControlError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::AgentControlError> : std::true_type {};
