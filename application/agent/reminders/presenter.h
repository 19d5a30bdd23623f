#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvan {

/// Something the user can press on a popup. The key "default" is a click on the popup itself.
struct PopupAction {
  std::string key;
  std::string label;

  bool operator==(const PopupAction&) const = default;
};

/// What is to be shown. The texts are as they are: markup in them is text.
struct Popup {
  /// Opaque, and the same for the same matter: where the service knows tags, a popup takes the place of the one that
  /// stands there with its tag.
  std::string tag;
  /// The popup of the same service whose place it takes; 0 when there is none. A service that does not have it any more
  /// shows a new one.
  std::uint32_t replaces = 0;
  std::string applicationName;
  std::string summary;
  std::string body;
  std::vector<PopupAction> actions;

  bool operator==(const Popup&) const = default;
};

/// A popup that a service has taken. Its number means nothing to another service, nor to the same one started again.
struct ShownPopup {
  /// The service's unique name on the bus.
  std::string service;
  std::uint32_t number = 0;

  bool operator==(const ShownPopup&) const = default;
};

enum class PresenterError {
  /// Nothing was asked: there is no service.
  noService = 1,
  /// The service went before it answered. It showed nothing that is still there.
  serviceVanished,
  /// No answer came in time. The service may show the popup or not.
  timedOut,
  /// The service answered that it does not show this.
  refused,
};

using PopupOutcome = std::expected<ShownPopup, PresenterError>;

/// Told of what becomes of popups, on the presenter's executor and never from within a call to the presenter. Popups of
/// others may be among those it is told of.
class PopupListener {
 public:
  virtual ~PopupListener() = default;

  /// The user's word. `activationToken` lets the program that opens something come to the front; empty when the service
  /// gave none.
  virtual void popupActionInvoked(const ShownPopup& popup, std::string_view actionKey,
                                  const std::string& activationToken) = 0;
  /// The popup is not there any more: the user closed it, it expired, or it was withdrawn.
  virtual void popupClosed(const ShownPopup& popup) = 0;
  /// A service came and it is known what it can do, or it went, or another one took its place.
  virtual void popupServiceChanged() = 0;
};

/// What shows popups: the desktop's service, or a recording in tests. Used from its executor alone.
class PopupPresenter {
 public:
  virtual ~PopupPresenter() = default;

  /// Null ends the listening. The listener must be there until then.
  virtual void setListener(PopupListener* listener) = 0;

  /// Whether there is a service, and it is known what it can do, or one that the bus starts for the first popup.
  virtual bool isThere() const = 0;
  /// The unique name of the service's connection; empty when none is running.
  virtual std::string service() const = 0;
  /// Whether it replaces popups by their tag.
  virtual bool replacesByTag() const = 0;

  /// Shows `popup` and calls `completion` once, on the executor, never within this call, and before the listener is
  /// told anything of the popup. Answers within a bound of the presenter's. Several may be under way at once.
  virtual void show(Popup popup, std::move_only_function<void(PopupOutcome)> completion) = 0;

  /// Takes the popup away, as far as its service is still there and has it. The listener is told that it is closed, or
  /// not, as the service has it.
  virtual void withdraw(const ShownPopup& popup) = 0;
};

} // namespace orvan
