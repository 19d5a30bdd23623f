#include "OrvanTestSupport/in_memory_notification_center.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <optional>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"

namespace orvan {
namespace {

/// A timer does not reach as far as a calendar does.
constexpr Instant::duration longestWait = std::chrono::days{365};

std::exception_ptr refusal() {
  return std::make_exception_ptr(Error{NotificationCenterError::refused, "scripted"});
}

/// The fault of a centre whose service has gone.
[[noreturn]] void throwUnavailable() {
  throw Error{NotificationCenterError::unavailable, "scripted"};
}

} // namespace

InMemoryNotificationCenter::InMemoryNotificationCenter(Executor executor, std::shared_ptr<const Clock> clock,
                                                       AuthorizationStatus status)
    : executor_(std::move(executor)), clock_(std::move(clock)), status_(status) {}

void InMemoryNotificationCenter::setAuthorizationStatus(AuthorizationStatus status) {
  const MutexLock lock{mutex_};
  status_ = status;
}

void InMemoryNotificationCenter::setUserAnswer(AuthorizationStatus status) {
  const MutexLock lock{mutex_};
  userAnswer_ = status;
}

void InMemoryNotificationCenter::script(Operation operation, CenterBehaviour behaviour) {
  const MutexLock lock{mutex_};
  scripts_.at(static_cast<std::size_t>(operation)).always = behaviour;
}

void InMemoryNotificationCenter::scriptCall(Operation operation, std::size_t nth, CenterBehaviour behaviour) {
  const MutexLock lock{mutex_};
  Script& script = scripts_.at(static_cast<std::size_t>(operation));
  script.byCall.insert_or_assign(script.calls + nth, behaviour);
}

void InMemoryNotificationCenter::answerHeld() {
  std::deque<std::function<void()>> held;
  {
    const MutexLock lock{mutex_};
    held.swap(held_);
  }
  for (auto& answer : held) {
    boost::asio::post(executor_, std::move(answer));
  }
}

void InMemoryNotificationCenter::dropHeld() {
  std::deque<std::function<void()>> held;
  const MutexLock lock{mutex_};
  held.swap(held_);
}

void InMemoryNotificationCenter::setForeground(bool foreground) {
  const MutexLock lock{mutex_};
  foreground_ = foreground;
}

std::size_t InMemoryNotificationCenter::callCount(Operation operation) const {
  const MutexLock lock{mutex_};
  return scripts_.at(static_cast<std::size_t>(operation)).calls;
}

std::vector<Presentation> InMemoryNotificationCenter::presentations() const {
  const MutexLock lock{mutex_};
  return presentations_;
}

CenterBehaviour InMemoryNotificationCenter::behaviourOfNextCall(Operation operation) {
  const MutexLock lock{mutex_};
  Script& script = scripts_.at(static_cast<std::size_t>(operation));
  const auto own = script.byCall.find(++script.calls);
  return own == script.byCall.end() ? script.always : own->second;
}

/// An action that a held question or a timer keeps without keeping this centre.
std::function<void()> InMemoryNotificationCenter::whileAlive(std::function<void(InMemoryNotificationCenter&)> action) {
  return [weak = weak_from_this(), action = std::move(action)] {
    if (const auto self = std::static_pointer_cast<InMemoryNotificationCenter>(weak.lock())) {
      action(*self);
    }
  };
}

void InMemoryNotificationCenter::later(std::chrono::nanoseconds delay, std::function<void()> action) {
  clock_->startTimer(monotonicInstantAfter(clock_->monotonicNow(), delay), executor_,
                     [action = std::move(action)](SleepEnd /*end*/) { action(); });
}

/// Puts one question through the script. `answer` carries the operation out and calls its handler; called again, it
/// only answers once more.
void InMemoryNotificationCenter::take(Operation operation, std::function<void()> answer, std::function<void()> fail) {
  const CenterBehaviour behaviour = behaviourOfNextCall(operation);
  switch (behaviour.kind()) {
    case CenterBehaviour::Kind::answer:
      return boost::asio::post(executor_, std::move(answer));
    case CenterBehaviour::Kind::answerLate:
      return later(behaviour.delay(), std::move(answer));
    case CenterBehaviour::Kind::answerTwice:
      // One after the other, also where the executor has several threads.
      return boost::asio::post(executor_, [executor = executor_, answer = std::move(answer)] {
        answer();
        boost::asio::post(executor, answer);
      });
    case CenterBehaviour::Kind::fail:
      return boost::asio::post(executor_, std::move(fail));
    case CenterBehaviour::Kind::throwError:
      throwUnavailable();
    case CenterBehaviour::Kind::hang: {
      const MutexLock lock{mutex_};
      held_.push_back(std::move(answer));
    }
  }
}

NotificationSettings InMemoryNotificationCenter::settings() const {
  const MutexLock lock{mutex_};
  return NotificationSettings{status_};
}

void InMemoryNotificationCenter::getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) {
  take(Operation::notificationSettings,
       whileAlive([completionHandler](InMemoryNotificationCenter& self) { completionHandler(self.settings()); }),
       [] {});
}

bool InMemoryNotificationCenter::askUser() {
  const MutexLock lock{mutex_};
  if (status_ == AuthorizationStatus::notDetermined) {
    status_ = userAnswer_;
  }
  return status_ == AuthorizationStatus::authorized || status_ == AuthorizationStatus::provisional;
}

void InMemoryNotificationCenter::requestAuthorization(AuthorizationOptions /*options*/,
                                                      std::function<void(bool, std::exception_ptr)> completionHandler) {
  take(Operation::requestAuthorization, whileAlive([completionHandler](InMemoryNotificationCenter& self) {
         completionHandler(self.askUser(), nullptr);
       }),
       [completionHandler] { completionHandler(false, refusal()); });
}

bool InMemoryNotificationCenter::store(NotificationRequest request) {
  const auto due = userCalendarInstant(request.trigger().components());
  if (!due.has_value()) {
    return false;
  }
  std::string identifier = request.identifier();
  {
    const MutexLock lock{mutex_};
    pending_.insert_or_assign(identifier, Pending{.request = std::move(request), .due = *due});
  }
  watch(std::move(identifier), *due);
  return true;
}

void InMemoryNotificationCenter::watch(std::string identifier, Instant due) {
  const auto wait = std::clamp(due - clock_->now(), Instant::duration::zero(), longestWait);
  later(wait, whileAlive([identifier = std::move(identifier), due](InMemoryNotificationCenter& self) {
          self.deliverWhenDue(identifier, due);
        }));
}

void InMemoryNotificationCenter::deliverWhenDue(const std::string& identifier, Instant due) {
  const Instant now = clock_->now();
  std::optional<Notification> notification;
  {
    const MutexLock lock{mutex_};
    const auto pending = pending_.find(identifier);
    if (pending == pending_.end() || pending->second.due != due) {
      return; // Withdrawn, or replaced by one that has a timer of its own.
    }
    if (due <= now) {
      notification.emplace(now, std::move(pending->second.request));
      pending_.erase(pending);
    }
  }
  if (notification.has_value()) {
    present(*std::move(notification));
  } else {
    watch(identifier, due);
  }
}

void InMemoryNotificationCenter::add(NotificationRequest request,
                                     std::function<void(std::exception_ptr)> completionHandler) {
  // The second of two answers must not make a notification pending again that has been shown or withdrawn in between.
  const auto result = std::make_shared<std::optional<bool>>();
  take(Operation::add,
       whileAlive([completionHandler, request = std::move(request), result](InMemoryNotificationCenter& self) {
         if (!result->has_value()) {
           *result = self.store(request);
         }
         completionHandler(**result ? nullptr : refusal());
       }),
       [completionHandler] { completionHandler(refusal()); });
}

std::vector<NotificationRequest> InMemoryNotificationCenter::pending() const {
  const MutexLock lock{mutex_};
  std::vector<NotificationRequest> requests;
  requests.reserve(pending_.size());
  for (const auto& [identifier, pending] : pending_) {
    requests.push_back(pending.request);
  }
  return requests;
}

void InMemoryNotificationCenter::getPendingNotificationRequests(
    std::function<void(std::vector<NotificationRequest>)> completionHandler) {
  take(Operation::pendingRequests,
       whileAlive([completionHandler](InMemoryNotificationCenter& self) { completionHandler(self.pending()); }), [] {});
}

std::vector<Notification> InMemoryNotificationCenter::delivered() const {
  const MutexLock lock{mutex_};
  std::vector<Notification> notifications;
  notifications.reserve(delivered_.size());
  for (const auto& [identifier, notification] : delivered_) {
    notifications.push_back(notification);
  }
  return notifications;
}

void InMemoryNotificationCenter::getDeliveredNotifications(
    std::function<void(std::vector<Notification>)> completionHandler) {
  take(Operation::deliveredNotifications,
       whileAlive([completionHandler](InMemoryNotificationCenter& self) { completionHandler(self.delivered()); }),
       [] {});
}

void InMemoryNotificationCenter::removePendingNotificationRequests(std::vector<std::string> identifiers) {
  const MutexLock lock{mutex_};
  for (const auto& identifier : identifiers) {
    pending_.erase(identifier);
  }
}

void InMemoryNotificationCenter::removeDeliveredNotifications(std::vector<std::string> identifiers) {
  const MutexLock lock{mutex_};
  for (const auto& identifier : identifiers) {
    delivered_.erase(identifier);
  }
}

std::shared_ptr<NotificationCenterDelegate> InMemoryNotificationCenter::delegate() const {
  const MutexLock lock{mutex_};
  return delegate_.lock();
}

void InMemoryNotificationCenter::setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) {
  const MutexLock lock{mutex_};
  delegate_ = std::move(delegate);
}

std::vector<Notification> InMemoryNotificationCenter::takeDue() {
  const Instant now = clock_->now();
  const MutexLock lock{mutex_};
  std::vector<Notification> due;
  for (auto pending = pending_.begin(); pending != pending_.end();) {
    if (pending->second.due > now) {
      ++pending;
    } else {
      due.emplace_back(now, std::move(pending->second.request));
      pending = pending_.erase(pending);
    }
  }
  return due;
}

void InMemoryNotificationCenter::deliverDue() {
  for (auto& notification : takeDue()) {
    present(std::move(notification));
  }
}

void InMemoryNotificationCenter::present(Notification notification) {
  std::shared_ptr<NotificationCenterDelegate> delegate;
  {
    const MutexLock lock{mutex_};
    delegate = foreground_ ? delegate_.lock() : nullptr;
  }
  if (delegate == nullptr) {
    return deliver(std::move(notification));
  }
  const auto self = std::static_pointer_cast<InMemoryNotificationCenter>(shared_from_this());
  delegate->willPresent(self, notification, [self, notification](PresentationOptions options) {
    self->finishPresenting(notification, options);
  });
}

void InMemoryNotificationCenter::finishPresenting(const Notification& notification, PresentationOptions options) {
  {
    const MutexLock lock{mutex_};
    presentations_.emplace_back(notification.request().identifier(), options);
  }
  if (!options.empty()) {
    deliver(notification);
  }
}

void InMemoryNotificationCenter::deliver(Notification notification) {
  std::string identifier = notification.request().identifier();
  const MutexLock lock{mutex_};
  delivered_.insert_or_assign(std::move(identifier), std::move(notification));
}

} // namespace orvan
