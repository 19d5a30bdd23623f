#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "OrvanPlatform/notification_center/notification_settings.h"
#include "application/agent/reminders/presenter.h"

namespace orvan {

/// Asks the user by popup whether an application may show reminders: one question at a time for each. A question that
/// nobody can be asked now is asked when a service comes; one that the user closes is asked when the application asks
/// again. Kept in memory alone. Used from the presenter's executor; made by std::make_shared.
class AuthorizationQuestions : public std::enable_shared_from_this<AuthorizationQuestions> {
 public:
  using Answered =
      std::function<void(const std::string& application, const std::string& displayName, AuthorizationStatus status)>;

  AuthorizationQuestions(std::shared_ptr<PopupPresenter> presenter, Answered answered)
      : presenter_(std::move(presenter)), answered_(std::move(answered)) {}

  void ask(const std::string& application, const std::string& displayName);
  /// The user decided in another way.
  void withdraw(const std::string& application);

  /// Whether it is the popup of a question.
  bool popupActionInvoked(const ShownPopup& popup, std::string_view actionKey);
  void popupClosed(const ShownPopup& popup);
  void popupServiceChanged();

 private:
  struct Question {
    std::string displayName;
    bool isOnItsWay = false;
    std::optional<ShownPopup> popup;
  };
  using Questions = std::map<std::string, Question>;

  void show(const std::string& application);
  void shown(const std::string& application, const PopupOutcome& outcome);
  Questions::iterator questionOf(const ShownPopup& popup);

  const std::shared_ptr<PopupPresenter> presenter_;
  const Answered answered_;
  Questions questions_;
};

} // namespace orvan
