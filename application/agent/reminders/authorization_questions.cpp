#include "application/agent/reminders/authorization_questions.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "application/agent/reminders/reminder_popups.h"

namespace orvan {

void AuthorizationQuestions::ask(const std::string& application, const std::string& displayName) {
  if (questions_.try_emplace(application, Question{.displayName = displayName, .popup = std::nullopt}).second) {
    show(application);
  }
}

void AuthorizationQuestions::withdraw(const std::string& application) {
  const auto question = questions_.extract(application);
  if (!question.empty() && question.mapped().popup) {
    presenter_->withdraw(*question.mapped().popup);
  }
}

void AuthorizationQuestions::show(const std::string& application) {
  auto& question = questions_.at(application);
  question.popup.reset();
  if (question.isOnItsWay || !presenter_->isThere()) {
    return;
  }
  question.isOnItsWay = true;
  presenter_->show(questionPopup(application, question.displayName),
                   [weak = weak_from_this(), application](const PopupOutcome& outcome) {
                     if (const auto self = weak.lock()) {
                       self->shown(application, outcome);
                     }
                   });
}

void AuthorizationQuestions::shown(const std::string& application, const PopupOutcome& outcome) {
  const auto question = questions_.find(application);
  if (question == questions_.end()) {
    if (outcome) {
      presenter_->withdraw(*outcome);
    }
    return;
  }
  question->second.isOnItsWay = false;
  if (outcome) {
    question->second.popup = *outcome;
    return;
  }
  // Without a service it waits for the next. An answer to a popup that nobody knows of could not be told.
  if (outcome.error() == PresenterError::timedOut || outcome.error() == PresenterError::refused) {
    questions_.erase(question);
  }
}

AuthorizationQuestions::Questions::iterator AuthorizationQuestions::questionOf(const ShownPopup& popup) {
  return std::ranges::find_if(questions_, [&](const auto& each) { return each.second.popup == popup; });
}

bool AuthorizationQuestions::popupActionInvoked(const ShownPopup& popup, std::string_view actionKey) {
  const auto question = questionOf(popup);
  if (question == questions_.end()) {
    return false;
  }
  if (actionKey != reminder_action::allow && actionKey != reminder_action::notNow) {
    return true;
  }
  const auto answer = questions_.extract(question);
  const bool allowed = actionKey == reminder_action::allow;
  answered_(answer.key(), answer.mapped().displayName,
            allowed ? AuthorizationStatus::authorized : AuthorizationStatus::denied);
  return true;
}

void AuthorizationQuestions::popupClosed(const ShownPopup& popup) {
  const auto question = questionOf(popup);
  if (question != questions_.end()) {
    questions_.erase(question);
  }
}

void AuthorizationQuestions::popupServiceChanged() {
  std::vector<std::string> unasked;
  for (const auto& [application, question] : questions_) {
    if (!question.popup || question.popup->service != presenter_->service()) {
      unasked.push_back(application);
    }
  }
  for (const auto& application : unasked) {
    show(application);
  }
}

} // namespace orvan
