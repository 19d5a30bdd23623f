#include "application/agent/reminders/reminder_center.h"

#include <boost/asio/post.hpp>
#include <utility>

#include "OrvanPlatform/notification_center/notification_center_error.h"
#include "application/agent/reminders/reminder_popups.h"

namespace orvan {
namespace {

/// What popups of the agent itself are shown for.
const std::string agentName = "Orvan";

bool isWithin(int value, int least, int most) noexcept {
  return value >= least && value <= most;
}

/// Calendars take month 500 for one in a later year, and have years that no instant reaches.
bool namesAMoment(const CalendarComponents& date) {
  return isWithin(date.year(), 1, 9999) && isWithin(date.month(), 1, 13) && isWithin(date.day(), 1, 31) &&
         isWithin(date.hour(), 0, 23) && isWithin(date.minute(), 0, 59) && isWithin(date.second(), 0, 59) &&
         userCalendarInstant(date).has_value();
}

} // namespace

ReminderCenter::ReminderCenter(ReminderCenterParts parts) : parts_(std::move(parts)), applications_(*parts_.file) {
  due_.replace(parts_.file->pendingTimes());
  // They live no longer than this, which is what they call.
  questions_ = std::make_shared<AuthorizationQuestions>(
      parts_.presenter, [this](const std::string& application, const std::string& displayName,
                               AuthorizationStatus status) { setAuthorization(application, displayName, status); });
  presenting_ =
      std::make_shared<ReminderPresenting>(PresentingParts{.file = *parts_.file,
                                                           .due = due_,
                                                           .applications = applications_,
                                                           .clock = parts_.clock,
                                                           .alarm = parts_.alarm,
                                                           .presenter = parts_.presenter,
                                                           .foreground = parts_.foreground,
                                                           .ownApplication = parts_.ownApplication,
                                                           .log = parts_.log,
                                                           .fileFailed = [this](const Error& e) { fileFailed(e); }});
}

ReminderCenter::~ReminderCenter() = default;

void ReminderCenter::start() {
  presenting_->setTitles(titles());
  presenting_->start();
  parts_.presenter->setListener(this);
  parts_.alarm->setWake([weak = weak_from_this()](WakeReason reason) {
    if (const auto self = weak.lock()) {
      self->woken(reason);
    }
  });
  workSoon();
}

void ReminderCenter::stop() {
  parts_.alarm->setWake(nullptr);
  parts_.presenter->setListener(nullptr);
  listener_ = nullptr;
}

void ReminderCenter::woken(WakeReason reason) {
  guarded([&] {
    presenting_->alarmCame();
    if (reason == WakeReason::clockChanged) {
      due_.replace(parts_.file->pendingTimes());
      presenting_->tryAgain();
    }
  });
  presenting_->work();
}

void ReminderCenter::guarded(const std::function<void()>& body) {
  try {
    body();
  } catch (const Error& error) {
    fileFailed(error);
  }
}

void ReminderCenter::fileFailed(const Error& error) {
  if (listener_ != nullptr) {
    listener_->reminderFileFailed(error);
  }
}

/// Not within a call: whoever made it waits for its answer, not for what is presented.
void ReminderCenter::workSoon() {
  boost::asio::post(parts_.executor, [weak = presenting_->weak_from_this()] {
    if (const auto presenting = weak.lock()) {
      presenting->work();
    }
  });
}

AuthorizationStatus ReminderCenter::status(std::string_view application) const {
  const auto* known = applications_.find(application);
  return known == nullptr ? AuthorizationStatus::notDetermined : known->status;
}

AuthorizationStatus ReminderCenter::requestAuthorization(const std::string& application,
                                                         const std::string& displayName) {
  const auto now = status(application);
  if (now == AuthorizationStatus::notDetermined) {
    questions_->ask(application, displayName);
  }
  return now;
}

void ReminderCenter::setAuthorization(const std::string& application, const std::string& displayName,
                                      AuthorizationStatus status) {
  const bool changed = applications_.decide(application, displayName, status);
  questions_->withdraw(application);
  if (changed && listener_ != nullptr) {
    listener_->authorizationChanged(application, status);
  }
  workSoon();
}

void ReminderCenter::add(const std::string& application, const std::string& displayName,
                         const NotificationRequest& request) {
  if (!namesAMoment(request.trigger().components())) {
    throw Error(NotificationCenterError::refused, "adding a reminder");
  }
  const auto number = applications_.note(application, displayName).number;
  if (due_.count(number) >= mostPending && !parts_.file->isPending(number, request.identifier())) {
    throw Error(NotificationCenterError::refused, "adding a reminder");
  }
  const auto added = parts_.file->add(number, request);
  if (added.replaced) {
    due_.remove(*added.replaced);
  }
  due_.add({.application = number, .number = added.number, .components = request.trigger().components()});
  workSoon();
}

std::vector<NotificationRequest> ReminderCenter::pending(std::string_view application) const {
  const auto* known = applications_.find(application);
  return known == nullptr ? std::vector<NotificationRequest>{} : parts_.file->pending(known->number);
}

std::vector<Notification> ReminderCenter::delivered(std::string_view application) const {
  const auto* known = applications_.find(application);
  return known == nullptr ? std::vector<Notification>{} : parts_.file->delivered(known->number);
}

void ReminderCenter::removePending(std::string_view application, const std::vector<std::string>& identifiers) {
  const auto* known = applications_.find(application);
  if (known == nullptr) {
    return;
  }
  for (const auto number : parts_.file->removePending(known->number, identifiers)) {
    due_.remove(number);
  }
  workSoon();
}

void ReminderCenter::removeDelivered(std::string_view application, const std::vector<std::string>& identifiers) {
  const auto* known = applications_.find(application);
  if (known == nullptr) {
    return;
  }
  presenting_->settle(parts_.file->removeDelivered(known->number, identifiers));
  workSoon();
}

void ReminderCenter::setTitles(TitleDisclosure titles) {
  parts_.file->setTitles(titles);
  presenting_->setTitles(titles);
  workSoon();
}

const std::string& ReminderCenter::ownDisplayName() const {
  const auto* own = applications_.find(parts_.ownApplication);
  return own == nullptr ? agentName : own->displayName;
}

void ReminderCenter::presentTest(std::move_only_function<void(std::optional<PresenterError>)> completion) {
  parts_.presenter->show(testPopup(ownDisplayName()),
                         [completion = std::move(completion)](const PopupOutcome& outcome) mutable {
                           completion(outcome ? std::nullopt : std::optional{outcome.error()});
                         });
}

void ReminderCenter::popupActionInvoked(const ShownPopup& popup, std::string_view actionKey,
                                        const std::string& activationToken) {
  guarded([&] {
    if (questions_->popupActionInvoked(popup, actionKey)) {
      return;
    }
    if (const auto presentation = parts_.file->presentationOf(popup)) {
      act(*presentation, actionKey, activationToken);
    }
  });
}

void ReminderCenter::popupClosed(const ShownPopup& popup) {
  guarded([&] {
    questions_->popupClosed(popup);
    parts_.file->forgetPopup(popup);
  });
}

void ReminderCenter::popupServiceChanged() {
  questions_->popupServiceChanged();
  presenting_->tryAgain();
  presenting_->work();
}

void ReminderCenter::act(const Presentation& presentation, std::string_view actionKey,
                         const std::string& activationToken) {
  const auto& application = applications_.numbered(presentation.application);
  if (actionKey == reminder_action::later) {
    return postpone(presentation);
  }
  if (actionKey == reminder_action::open) {
    return open(presentation, application, activationToken);
  }
  const bool isOwn = application.identifier == parts_.ownApplication;
  if (actionKey == reminder_action::done && isOwn && presentation.kind == PresentationKind::single) {
    markDone(presentation.reminders.front());
  }
}

void ReminderCenter::open(const Presentation& presentation, const ReminderApplication& application,
                          const std::string& activationToken) {
  const bool isGroup = presentation.kind == PresentationKind::group;
  if (application.identifier != parts_.ownApplication) {
    if (listener_ != nullptr) {
      listener_->reminderActivated(application.identifier,
                                   isGroup ? std::string{} : presentation.reminders.front().identifier(),
                                   reminder_action::open);
    }
    return;
  }
  if (isGroup) {
    parts_.actions->openAll(activationToken);
  } else {
    parts_.actions->open(presentation.reminders.front(), activationToken);
  }
}

void ReminderCenter::markDone(const NotificationRequest& reminder) {
  parts_.actions->markDone(
      reminder, [weak = weak_from_this(), identifier = reminder.identifier()](ReminderActions::DoneOutcome outcome) {
        if (const auto self = weak.lock()) {
          self->markedDone(identifier, outcome);
        }
      });
}

void ReminderCenter::markedDone(const std::string& identifier, ReminderActions::DoneOutcome outcome) {
  if (outcome == ReminderActions::DoneOutcome::saved) {
    return guarded([&] { removeDelivered(parts_.ownApplication, {identifier}); });
  }
  parts_.presenter->show(notSavedPopup(ownDisplayName()), [](const PopupOutcome& /*outcome*/) {});
}

void ReminderCenter::postpone(const Presentation& presentation) {
  const auto times = parts_.file->postpone(presentation.number, userCalendarComponents(parts_.clock->now() + laterBy));
  for (const auto& time : times) {
    due_.add(time);
  }
  if (presentation.popup) {
    parts_.presenter->withdraw(*presentation.popup);
  }
  presenting_->work();
}

} // namespace orvan
