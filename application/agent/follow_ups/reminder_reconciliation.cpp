#include "application/agent/follow_ups/reminder_reconciliation.h"

#include <malloc.h>

#include <boost/asio/post.hpp>
#include <chrono>
#include <exception>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/store/application_store_error.h"

namespace orvan {
namespace {

constexpr std::chrono::minutes pauseAfterFailure{5};

enum class PassEnd { done, nothingThere, failed };

PassEnd run(const StoreFollowUps& followUps, const std::shared_ptr<FollowUpNotificationScheduling>& centre,
            const LogChannel& log) {
  try {
    followUps.reconcile(centre);
    return PassEnd::done;
  } catch (const Error& error) {
    if (error.code() == ApplicationStoreError::storeMissing) {
      return PassEnd::nothingThere;
    }
    log.write("reminders.not_reconciled",
              {{"category", error.code().category().name()}, {"code", std::to_string(error.code().value())}});
  } catch (const std::exception&) {
    log.write("reminders.not_reconciled");
  }
  return PassEnd::failed;
}

} // namespace

class ReminderReconciliation::Passes : public std::enable_shared_from_this<Passes> {
 public:
  Passes(Executor executor, Executor worker, StoreFollowUps followUps,
         std::shared_ptr<FollowUpNotificationScheduling> centre, std::shared_ptr<const Clock> clock, LogChannel log)
      : executor_(std::move(executor)),
        worker_(std::move(worker)),
        followUps_(std::move(followUps)),
        centre_(std::move(centre)),
        clock_(std::move(clock)),
        log_(std::move(log)) {}

  void request() {
    isWanted_ = true;
    begin();
  }
  bool isRunning() const noexcept { return isRunning_; }
  void stop() {
    isStopped_ = true;
    stopTimer();
  }

 private:
  void begin() {
    if (!isWanted_ || isRunning_ || isStopped_) {
      return;
    }
    stopTimer();
    isWanted_ = false;
    isRunning_ = true;
    boost::asio::post(worker_, [self = shared_from_this()] {
      const auto end = run(self->followUps_, self->centre_, self->log_);
      malloc_trim(0); // The agent runs all day, and a pass over a large store needs much for a moment.
      boost::asio::post(self->executor_, [self, end] { self->ended(end); });
    });
  }

  void ended(PassEnd end) {
    isRunning_ = false;
    if (end == PassEnd::failed && !isStopped_) {
      timer_ = clock_->startTimer(monotonicInstantAfter(clock_->monotonicNow(), pauseAfterFailure), executor_,
                                  [weak = weak_from_this()](SleepEnd sleepEnd) {
                                    const auto self = weak.lock();
                                    if (self != nullptr && sleepEnd == SleepEnd::elapsed) {
                                      self->request();
                                    }
                                  });
    }
    begin();
  }

  void stopTimer() {
    if (const auto timer = std::exchange(timer_, nullptr)) {
      timer->cancel();
    }
  }

  const Executor executor_;
  const Executor worker_;
  const StoreFollowUps followUps_;
  const std::shared_ptr<FollowUpNotificationScheduling> centre_;
  const std::shared_ptr<const Clock> clock_;
  const LogChannel log_;
  std::shared_ptr<Timer> timer_;
  bool isWanted_ = false;
  bool isRunning_ = false;
  bool isStopped_ = false;
};

ReminderReconciliation::ReminderReconciliation(Executor executor, SessionSettings settings,
                                               std::shared_ptr<FollowUpNotificationScheduling> centre,
                                               std::shared_ptr<const Clock> clock, LogChannel log)
    : passes_(std::make_shared<Passes>(std::move(executor), worker_.get(), StoreFollowUps{std::move(settings)},
                                       std::move(centre), std::move(clock), std::move(log))) {}

ReminderReconciliation::~ReminderReconciliation() {
  passes_->stop();
}

void ReminderReconciliation::reconcile() {
  passes_->request();
}

bool ReminderReconciliation::isRunning() const noexcept {
  return passes_->isRunning();
}

void ReminderReconciliation::stop() {
  passes_->stop();
}

} // namespace orvan
