#pragma once

namespace orvan {

/// What the user has decided about this application's notifications. A centre may report values of its own beyond these
/// four; they say nothing by themselves about whether notifications are allowed.
enum class AuthorizationStatus {
  /// The user has not been asked.
  notDetermined,
  denied,
  authorized,
  /// Allowed without having asked, delivered quietly.
  provisional,
};

class NotificationSettings {
 public:
  explicit NotificationSettings(AuthorizationStatus authorizationStatus) : authorizationStatus_(authorizationStatus) {}

  AuthorizationStatus authorizationStatus() const noexcept { return authorizationStatus_; }

  bool operator==(const NotificationSettings&) const = default;

 private:
  AuthorizationStatus authorizationStatus_;
};

/// What an application asks the user to allow. A set of flags.
class AuthorizationOptions {
 public:
  static const AuthorizationOptions sound;
  static const AuthorizationOptions alert;

  constexpr unsigned rawValue() const noexcept { return rawValue_; }
  constexpr AuthorizationOptions operator|(AuthorizationOptions other) const noexcept {
    return AuthorizationOptions{rawValue_ | other.rawValue_};
  }
  constexpr bool operator==(const AuthorizationOptions&) const noexcept = default;

 private:
  constexpr explicit AuthorizationOptions(unsigned rawValue) noexcept : rawValue_(rawValue) {}
  unsigned rawValue_;
};

inline constexpr AuthorizationOptions AuthorizationOptions::sound{2};
inline constexpr AuthorizationOptions AuthorizationOptions::alert{4};

/// How a notification that comes due in the foreground is presented. A set of flags; the empty set suppresses it.
class PresentationOptions {
 public:
  static const PresentationOptions sound;
  static const PresentationOptions banner;

  constexpr PresentationOptions() noexcept = default;

  constexpr unsigned rawValue() const noexcept { return rawValue_; }
  constexpr bool empty() const noexcept { return rawValue_ == 0; }
  constexpr PresentationOptions operator|(PresentationOptions other) const noexcept {
    return PresentationOptions{rawValue_ | other.rawValue_};
  }
  constexpr bool operator==(const PresentationOptions&) const noexcept = default;

 private:
  constexpr explicit PresentationOptions(unsigned rawValue) noexcept : rawValue_(rawValue) {}
  unsigned rawValue_ = 0;
};

inline constexpr PresentationOptions PresentationOptions::sound{2};
inline constexpr PresentationOptions PresentationOptions::banner{16};

} // namespace orvan
