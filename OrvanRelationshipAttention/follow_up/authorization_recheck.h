#pragma once

#include <chrono>

namespace orvan {

/// The timing of everything that waits for the user to allow notifications.
class AuthorizationRecheck {
 public:
  AuthorizationRecheck(std::chrono::nanoseconds interval, std::chrono::nanoseconds window,
                       std::chrono::nanoseconds registrationTimeout)
      : interval_(interval), window_(window), registrationTimeout_(registrationTimeout) {}

  /// Every 5 seconds for 600 seconds; 20 seconds for one registration.
  static AuthorizationRecheck standard() {
    return {std::chrono::seconds{5}, std::chrono::seconds{600}, std::chrono::seconds{20}};
  }

  /// The longest sleep between two checks of the watcher.
  std::chrono::nanoseconds interval() const noexcept { return interval_; }
  /// How long one watcher keeps going in all.
  std::chrono::nanoseconds window() const noexcept { return window_; }
  /// How long one registration may take, its wait for authorization included.
  std::chrono::nanoseconds registrationTimeout() const noexcept { return registrationTimeout_; }

  bool operator==(const AuthorizationRecheck&) const = default;

 private:
  std::chrono::nanoseconds interval_;
  std::chrono::nanoseconds window_;
  std::chrono::nanoseconds registrationTimeout_;
};

} // namespace orvan
