#include "OrvanPlatform/notification_center/notification_center.h"

#include <expected>
#include <optional>
#include <variant>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internal/continuation.h"
#include "OrvanPlatform/mutex.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"

namespace orvan {
namespace {

template <typename Result>
using Outcome = std::expected<Result, std::exception_ptr>;

using internal::Continuation;

std::exception_ptr errorOf(NotificationCenterError code, const char* attempt) {
  return std::make_exception_ptr(Error{code, attempt});
}

/// What a completion handler answers through: passes the first answer on and drops every other one.
template <typename Result>
class OneAnswer {
 public:
  explicit OneAnswer(Continuation<Outcome<Result>> waiting) : waiting_(std::move(waiting)) {}
  OneAnswer(const OneAnswer&) = delete;
  OneAnswer& operator=(const OneAnswer&) = delete;

  ~OneAnswer() { give(std::unexpected{errorOf(NotificationCenterError::unanswered, "asking the centre")}); }

  void give(Outcome<Result> answer) {
    std::optional<Continuation<Outcome<Result>>> waiting;
    {
      const MutexLock lock{mutex_};
      waiting.swap(waiting_);
    }
    if (waiting.has_value()) {
      waiting->resume(std::move(answer));
    }
  }

 private:
  Mutex mutex_;
  std::optional<Continuation<Outcome<Result>>> waiting_ ORVAN_GUARDED_BY(mutex_);
};

/// Asks through `ask`, which is given an object to answer through, and waits for the answer.
template <typename Result, typename Ask>
Task<Outcome<Result>> answerTo(Ask ask) {
  return internal::suspended<Outcome<Result>>([ask = std::move(ask)](Continuation<Outcome<Result>> waiting) mutable {
    auto answer = std::make_shared<OneAnswer<Result>>(std::move(waiting));
    try {
      ask(answer);
    } catch (...) {
      answer->give(std::unexpected{std::current_exception()});
    }
  });
}

template <typename Result>
Result valueOf(Outcome<Result> outcome) {
  if (!outcome.has_value()) {
    std::rethrow_exception(outcome.error());
  }
  return std::move(outcome).value();
}

/// Stands for the service that is not there.
class AbsentNotificationCenter final : public NotificationCenter {
 public:
  void getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) override {
    completionHandler(NotificationSettings{AuthorizationStatus::denied});
  }
  void requestAuthorization(AuthorizationOptions /*options*/,
                            std::function<void(bool, std::exception_ptr)> completionHandler) override {
    completionHandler(false, errorOf(NotificationCenterError::unavailable, "asking for authorization"));
  }
  void add(NotificationRequest /*request*/, std::function<void(std::exception_ptr)> completionHandler) override {
    completionHandler(errorOf(NotificationCenterError::unavailable, "adding a notification"));
  }
  void getPendingNotificationRequests(
      std::function<void(std::vector<NotificationRequest>)> completionHandler) override {
    completionHandler({});
  }
  void getDeliveredNotifications(std::function<void(std::vector<Notification>)> completionHandler) override {
    completionHandler({});
  }
  void removePendingNotificationRequests(std::vector<std::string> /*identifiers*/) override {}
  void removeDeliveredNotifications(std::vector<std::string> /*identifiers*/) override {}
  std::shared_ptr<NotificationCenterDelegate> delegate() const override { return nullptr; }
  void setDelegate(std::weak_ptr<NotificationCenterDelegate> /*delegate*/) override {}
};

struct CurrentCenter {
  Mutex mutex;
  std::shared_ptr<NotificationCenter> center ORVAN_GUARDED_BY(mutex);
};

CurrentCenter& currentCenter() {
  static CurrentCenter current;
  return current;
}

} // namespace

std::shared_ptr<NotificationCenter> NotificationCenter::current() {
  CurrentCenter& current = currentCenter();
  const MutexLock lock{current.mutex};
  return current.center != nullptr ? current.center : std::make_shared<AbsentNotificationCenter>();
}

void NotificationCenter::setCurrent(std::shared_ptr<NotificationCenter> center) {
  CurrentCenter& current = currentCenter();
  {
    const MutexLock lock{current.mutex};
    current.center.swap(center);
  }
  // The one that was replaced goes here, outside the lock.
}

Task<NotificationSettings> NotificationCenter::notificationSettings() {
  auto outcome = co_await answerTo<NotificationSettings>([self = shared_from_this()](auto answer) {
    self->getNotificationSettings([answer](NotificationSettings settings) { answer->give(settings); });
  });
  co_return valueOf(std::move(outcome));
}

Task<bool> NotificationCenter::authorizationGranted(AuthorizationOptions options) {
  auto outcome = co_await answerTo<bool>([self = shared_from_this(), options](auto answer) {
    self->requestAuthorization(options, [answer](bool granted, std::exception_ptr error) {
      answer->give(error ? Outcome<bool>{std::unexpected{std::move(error)}} : Outcome<bool>{granted});
    });
  });
  co_return valueOf(std::move(outcome));
}

Task<void> NotificationCenter::added(NotificationRequest request) {
  auto outcome =
      co_await answerTo<std::monostate>([self = shared_from_this(), request = std::move(request)](auto answer) {
        self->add(request, [answer](std::exception_ptr error) {
          answer->give(error ? Outcome<std::monostate>{std::unexpected{std::move(error)}} : std::monostate{});
        });
      });
  valueOf(std::move(outcome));
}

Task<std::vector<NotificationRequest>> NotificationCenter::pendingNotificationRequests() {
  auto outcome = co_await answerTo<std::vector<NotificationRequest>>([self = shared_from_this()](auto answer) {
    self->getPendingNotificationRequests([answer](auto requests) { answer->give(std::move(requests)); });
  });
  co_return valueOf(std::move(outcome));
}

Task<std::vector<Notification>> NotificationCenter::deliveredNotifications() {
  auto outcome = co_await answerTo<std::vector<Notification>>([self = shared_from_this()](auto answer) {
    self->getDeliveredNotifications([answer](auto notifications) { answer->give(std::move(notifications)); });
  });
  co_return valueOf(std::move(outcome));
}

} // namespace orvan
