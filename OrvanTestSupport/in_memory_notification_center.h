#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/mutex.h"
#include "OrvanPlatform/notification_center/notification_center.h"

namespace orvan {

/// What a test has an in-memory centre do with a question.
class CenterBehaviour {
 public:
  enum class Kind { answer, answerLate, answerTwice, hang, fail, throwError };

  /// As a healthy centre does; what every operation does unless told otherwise.
  static CenterBehaviour answer() { return CenterBehaviour{Kind::answer, {}}; }
  /// The same, once the clock has moved on by `delay`.
  static CenterBehaviour answerAfter(std::chrono::nanoseconds delay) {
    return CenterBehaviour{Kind::answerLate, delay};
  }
  /// Carries the operation out once and answers it twice.
  static CenterBehaviour answerTwice() { return CenterBehaviour{Kind::answerTwice, {}}; }
  /// Keeps the question until answerHeld().
  static CenterBehaviour hang() { return CenterBehaviour{Kind::hang, {}}; }
  /// Answers with NotificationCenterError::refused. Operations that cannot report an error drop the question.
  static CenterBehaviour fail() { return CenterBehaviour{Kind::fail, {}}; }
  /// Throws instead of taking the question.
  static CenterBehaviour throwError() { return CenterBehaviour{Kind::throwError, {}}; }

  Kind kind() const noexcept { return kind_; }
  std::chrono::nanoseconds delay() const noexcept { return delay_; }

 private:
  CenterBehaviour(Kind kind, std::chrono::nanoseconds delay) : kind_(kind), delay_(delay) {}
  Kind kind_;
  std::chrono::nanoseconds delay_;
};

/// How one notification that came due was shown.
class Presentation {
 public:
  Presentation(std::string identifier, PresentationOptions options)
      : identifier_(std::move(identifier)), options_(options) {}

  const std::string& identifier() const noexcept { return identifier_; }
  PresentationOptions options() const noexcept { return options_; }

  bool operator==(const Presentation&) const = default;

 private:
  std::string identifier_;
  PresentationOptions options_;
};

/// A whole notification centre without a desktop, for tests of programs that schedule notifications. Pending requests
/// become delivered when the clock it was given reaches their time; a test scripts what the user and the centre do.
///
/// Completion handlers run on the executor, never inside the call that asked. All operations may be called from any
/// thread. Held questions keep their callers parked: answer or drop them before the executor's event loop goes.
class InMemoryNotificationCenter final : public NotificationCenter {
 public:
  enum class Operation { notificationSettings, requestAuthorization, add, pendingRequests, deliveredNotifications };

  InMemoryNotificationCenter(Executor executor, std::shared_ptr<const Clock> clock,
                             AuthorizationStatus status = AuthorizationStatus::notDetermined);

  /// What the user decides, or has decided in the settings, as of now.
  void setAuthorizationStatus(AuthorizationStatus status);
  /// What the user will answer when asked. Without it, asking makes the status authorized. A user who has decided is
  /// not asked again.
  void setUserAnswer(AuthorizationStatus status);

  /// What every call of `operation` does from now on.
  void script(Operation operation, CenterBehaviour behaviour);
  /// What the `nth` call of `operation` from now on does; 1 is the next.
  void scriptCall(Operation operation, std::size_t nth, CenterBehaviour behaviour);
  /// Carries out and answers what hang() has kept, in the order it was asked.
  void answerHeld();
  /// Forgets what hang() has kept. A parked caller holds this centre, so a test that leaves questions unanswered ends
  /// with this.
  void dropHeld();

  /// In front, due notifications are first put to the delegate, and dropped when it answers with the empty set. Else,
  /// and without a delegate, they are delivered. A new centre is in the background.
  void setForeground(bool foreground);
  /// Delivers what is due by the wall clock: for tests that have set it. Moving the clock on does this by itself.
  void deliverDue();

  std::size_t callCount(Operation operation) const;
  std::vector<Presentation> presentations() const;

  void getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) override;
  void requestAuthorization(AuthorizationOptions options,
                            std::function<void(bool granted, std::exception_ptr error)> completionHandler) override;
  void add(NotificationRequest request, std::function<void(std::exception_ptr error)> completionHandler) override;
  void getPendingNotificationRequests(std::function<void(std::vector<NotificationRequest>)> completionHandler) override;
  void getDeliveredNotifications(std::function<void(std::vector<Notification>)> completionHandler) override;
  void removePendingNotificationRequests(std::vector<std::string> identifiers) override;
  void removeDeliveredNotifications(std::vector<std::string> identifiers) override;
  std::shared_ptr<NotificationCenterDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) override;

 private:
  static constexpr std::size_t operationCount = 5;

  struct Script {
    CenterBehaviour always = CenterBehaviour::answer();
    std::map<std::size_t, CenterBehaviour> byCall;
    std::size_t calls = 0;
  };
  struct Pending {
    NotificationRequest request;
    Instant due;
  };

  void take(Operation operation, std::function<void()> answer, std::function<void()> fail);
  CenterBehaviour behaviourOfNextCall(Operation operation);
  std::function<void()> whileAlive(std::function<void(InMemoryNotificationCenter&)> action);
  void later(std::chrono::nanoseconds delay, std::function<void()> action);
  NotificationSettings settings() const;
  bool askUser();
  bool store(NotificationRequest request);
  void watch(std::string identifier, Instant due);
  void deliverWhenDue(const std::string& identifier, Instant due);
  std::vector<NotificationRequest> pending() const;
  std::vector<Notification> delivered() const;
  std::vector<Notification> takeDue();
  void present(Notification notification);
  void finishPresenting(const Notification& notification, PresentationOptions options);
  void deliver(Notification notification);

  const Executor executor_;
  const std::shared_ptr<const Clock> clock_;

  mutable Mutex mutex_;
  AuthorizationStatus status_ ORVAN_GUARDED_BY(mutex_);
  AuthorizationStatus userAnswer_ ORVAN_GUARDED_BY(mutex_) = AuthorizationStatus::authorized;
  std::array<Script, operationCount> scripts_ ORVAN_GUARDED_BY(mutex_);
  std::deque<std::function<void()>> held_ ORVAN_GUARDED_BY(mutex_);
  bool foreground_ ORVAN_GUARDED_BY(mutex_) = false;
  std::map<std::string, Pending> pending_ ORVAN_GUARDED_BY(mutex_);
  std::map<std::string, Notification> delivered_ ORVAN_GUARDED_BY(mutex_);
  std::vector<Presentation> presentations_ ORVAN_GUARDED_BY(mutex_);
  std::weak_ptr<NotificationCenterDelegate> delegate_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
