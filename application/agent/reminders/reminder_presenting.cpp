#include "application/agent/reminders/reminder_presenting.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace orvan {
namespace {

constexpr std::chrono::minutes pauseAfterFailure{1};
constexpr std::chrono::minutes pauseAfterRefusal{5};
/// More than these at once are one popup.
constexpr std::size_t mostSinglePopups = 3;

const char* wordFor(const PopupOutcome& outcome) {
  if (outcome) {
    return "shown";
  }
  switch (outcome.error()) {
    case PresenterError::noService:
      return "no_service";
    case PresenterError::serviceVanished:
      return "service_vanished";
    case PresenterError::timedOut:
      return "timed_out";
    case PresenterError::refused:
      return "refused";
  }
  return "unknown";
}

} // namespace

void ReminderPresenting::start() {
  const auto numbers = parts_.file.interrupted();
  interrupted_.assign(numbers.begin(), numbers.end());
  showStandingAnew();
}

void ReminderPresenting::showStandingAnew() {
  const auto standing = parts_.file.standing();
  toShowAnew_.insert(standing.begin(), standing.end());
}

void ReminderPresenting::setTitles(TitleDisclosure titles) {
  titles_ = titles;
  showStandingAnew();
}

void ReminderPresenting::work() {
  guarded([this] {
    if (isShowing_ || mustWait()) {
      return;
    }
    if (unrecorded_) {
      unrecorded_();
      unrecorded_ = nullptr;
    }
    presentNext();
  });
  setAlarm();
}

void ReminderPresenting::tryAgain() {
  notBefore_.reset();
  putOffUntil_.reset();
  putOff_.clear();
}

void ReminderPresenting::settle(const LeftPopups& left) {
  for (const auto& popup : left.toWithdraw) {
    parts_.presenter->withdraw(popup);
  }
  toShowAnew_.insert(left.toShowAnew.begin(), left.toShowAnew.end());
}

void ReminderPresenting::guarded(const std::function<void()>& body) {
  try {
    body();
  } catch (const Error& error) {
    notBefore_ = parts_.clock->now() + pauseAfterFailure;
    parts_.log.write("reminders failed",
                     {{"domain", error.code().category().name()}, {"code", std::to_string(error.code().value())}});
    parts_.fileFailed(error);
  }
}

bool ReminderPresenting::mustWait() {
  const auto now = parts_.clock->now();
  if (putOffUntil_ && *putOffUntil_ <= now) {
    putOffUntil_.reset();
    putOff_.clear();
  }
  if (notBefore_ && *notBefore_ <= now) {
    notBefore_.reset();
  }
  return notBefore_.has_value();
}

void ReminderPresenting::presentNext() {
  if (!parts_.presenter->isThere()) {
    return;
  }
  if (takeUpInterrupted() || showNextAnew()) {
    return;
  }
  presentDue();
}

bool ReminderPresenting::takeUpInterrupted() {
  // What a service can do that the bus has yet to start is not known.
  while (!interrupted_.empty() && !parts_.presenter->service().empty()) {
    const bool isOnItsWay = takeUp(interrupted_.front());
    interrupted_.pop_front();
    if (isOnItsWay) {
      return true;
    }
  }
  return false;
}

bool ReminderPresenting::takeUp(std::int64_t number) {
  const auto presentation = parts_.file.presentation(number);
  if (!presentation || !parts_.presenter->replacesByTag()) {
    // It may have been shown, and nothing is to be shown twice.
    parts_.file.deliver(number, std::nullopt);
    return false;
  }
  if (!parts_.applications.mayPresent(presentation->application)) {
    giveBack(number);
    return false;
  }
  show(*presentation, std::nullopt, Purpose::first);
  return true;
}

bool ReminderPresenting::showNextAnew() {
  while (!toShowAnew_.empty()) {
    const auto presentation = parts_.file.presentation(*toShowAnew_.begin());
    toShowAnew_.erase(toShowAnew_.begin());
    // One that the user has closed stays closed.
    if (presentation && presentation->popup && presentation->popup->service == parts_.presenter->service() &&
        parts_.applications.mayPresent(presentation->application)) {
      show(*presentation, presentation->popup, Purpose::anew);
      return true;
    }
  }
  return false;
}

bool ReminderPresenting::presentDue() {
  return std::ranges::any_of(parts_.applications.all(), [this](const auto& each) {
    return parts_.applications.mayPresent(each.first) && presentDueOf(each.second);
  });
}

bool ReminderPresenting::presentDueOf(const ReminderApplication& application) {
  auto numbers = parts_.due.due(application.number, parts_.clock->now());
  std::erase_if(numbers, [this](std::int64_t number) { return putOff_.contains(number); });
  if (numbers.empty() || !foregroundAnswered(application, numbers)) {
    return false;
  }
  begin(application, std::move(numbers));
  return true;
}

bool ReminderPresenting::foregroundAnswered(const ReminderApplication& application,
                                            const std::vector<std::int64_t>& numbers) {
  if (parts_.foreground->someoneStandsInFront(application.identifier)) {
    for (const auto number : numbers) {
      if (!asked_.contains(number)) {
        askForeground(application, number);
      }
    }
  }
  return std::ranges::none_of(numbers, [this](std::int64_t number) {
    const auto asked = asked_.find(number);
    return asked != asked_.end() && asked->second == Asked::underWay;
  });
}

void ReminderPresenting::askForeground(const ReminderApplication& application, std::int64_t number) {
  auto request = parts_.file.pendingRequest(number);
  if (!request) {
    return;
  }
  asked_.emplace(number, Asked::underWay);
  parts_.foreground->willPresent(application.identifier, Notification(parts_.clock->now(), std::move(*request)),
                                 [weak = weak_from_this(), number](std::optional<PresentationOptions> options) {
                                   if (const auto self = weak.lock()) {
                                     self->foregroundSaid(number, options);
                                   }
                                 });
}

void ReminderPresenting::foregroundSaid(std::int64_t number, std::optional<PresentationOptions> options) {
  asked_.erase(number);
  guarded([&] {
    if (!parts_.due.contains(number)) {
      return;
    }
    if (options && options->empty()) {
      parts_.file.removePending(number);
      parts_.due.remove(number);
    } else {
      asked_.emplace(number, Asked::mayPresent);
    }
  });
  work();
}

void ReminderPresenting::begin(const ReminderApplication& application, std::vector<std::int64_t> numbers) {
  const auto kind = numbers.size() > mostSinglePopups ? PresentationKind::group : PresentationKind::single;
  if (kind == PresentationKind::single) {
    numbers.resize(1);
  }
  const auto begun = parts_.file.beginPresenting(application.number, kind, numbers, parts_.clock->now());
  for (const auto number : numbers) {
    parts_.due.remove(number);
    asked_.erase(number);
  }
  settle(begun.left);
  show(begun.presentation, begun.takesPlaceOf, Purpose::first);
}

void ReminderPresenting::show(const Presentation& presentation, const std::optional<ShownPopup>& takesPlaceOf,
                              Purpose purpose) {
  const auto& application = parts_.applications.numbered(presentation.application);
  const auto owner =
      application.identifier == parts_.ownApplication ? ReminderOwner::agent : ReminderOwner::otherProgram;
  auto popup = popupFor(presentation, application, owner, titles_);
  if (takesPlaceOf && takesPlaceOf->service == parts_.presenter->service()) {
    popup.replaces = takesPlaceOf->number;
  }
  isShowing_ = true;
  parts_.presenter->show(std::move(popup),
                         [weak = weak_from_this(), number = presentation.number, count = presentation.reminders.size(),
                          purpose](const PopupOutcome& outcome) {
                           if (const auto self = weak.lock()) {
                             self->shown(number, count, purpose, outcome);
                           }
                         });
}

void ReminderPresenting::shown(std::int64_t presentation, std::size_t count, Purpose purpose,
                               const PopupOutcome& outcome) {
  isShowing_ = false;
  parts_.log.write("reminder presented", {{"count", std::to_string(count)}, {"outcome", wordFor(outcome)}});
  unrecorded_ = [=, this] { record(presentation, count, purpose, outcome); };
  guarded([this] {
    unrecorded_();
    unrecorded_ = nullptr;
  });
  work();
}

void ReminderPresenting::record(std::int64_t presentation, std::size_t count, Purpose purpose,
                                const PopupOutcome& outcome) {
  if (outcome) {
    return deliver(presentation, count, *outcome);
  }
  if (purpose == Purpose::anew || outcome.error() == PresenterError::timedOut) {
    return deliver(presentation, count, std::nullopt);
  }
  const auto numbers = giveBack(presentation);
  const auto now = parts_.clock->now();
  if (outcome.error() != PresenterError::refused) {
    notBefore_ = now + pauseAfterFailure;
    return;
  }
  putOff_.insert(numbers.begin(), numbers.end());
  putOffUntil_ = now + pauseAfterRefusal;
}

void ReminderPresenting::deliver(std::int64_t presentation, std::size_t count, const std::optional<ShownPopup>& popup) {
  const auto left = parts_.file.deliver(presentation, popup);
  if (left == 0 && popup) {
    parts_.presenter->withdraw(*popup);
  }
  if (left != 0 && left < count) {
    toShowAnew_.insert(presentation);
  }
}

std::vector<std::int64_t> ReminderPresenting::giveBack(std::int64_t presentation) {
  std::vector<std::int64_t> numbers;
  for (const auto& time : parts_.file.giveBack(presentation)) {
    parts_.due.add(time);
    numbers.push_back(time.number);
  }
  return numbers;
}

void ReminderPresenting::setAlarm() {
  const auto now = parts_.clock->now();
  auto next = parts_.due.nextAfter(now, [this](std::int64_t number) { return parts_.applications.mayPresent(number); });
  for (const auto& pauseEnd : {notBefore_, putOffUntil_}) {
    if (pauseEnd && *pauseEnd > now) {
      next = std::min(next.value_or(*pauseEnd), *pauseEnd);
    }
  }
  if (armedFor_ != next) {
    parts_.alarm->setFor(next);
    armedFor_ = next;
  }
}

} // namespace orvan
