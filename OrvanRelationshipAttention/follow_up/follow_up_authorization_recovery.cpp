#include "OrvanRelationshipAttention/follow_up/internal/follow_up_authorization_recovery.h"

#include <boost/asio/detached.hpp>
#include <utility>

namespace orvan::internal {

using AuthorizationResult = FollowUpAuthorizationRecovery::AuthorizationResult;

FollowUpAuthorizationRecovery::FollowUpAuthorizationRecovery(Executor executor, std::shared_ptr<const Clock> clock)
    : executor_(std::move(executor)), clock_(std::move(clock)) {}

FollowUpAuthorizationRecovery::~FollowUpAuthorizationRecovery() {
  stop();
}

bool FollowUpAuthorizationRecovery::claimWatcher(bool recheckSettledAuthorization) {
  const MutexLock lock{lock_};
  if (stopped_) {
    return false;
  }
  recheckSettledAuthorization_ = recheckSettledAuthorization_ || recheckSettledAuthorization;
  if (watcherRunning_) {
    return false;
  }
  watcherRunning_ = true;
  ++watcherStarts_;
  return true;
}

void FollowUpAuthorizationRecovery::installWatcherTask(TaskHandle task) {
  bool stopped = false;
  {
    const MutexLock lock{lock_};
    stopped = stopped_;
    if (!stopped) {
      watcherTask_ = task;
    }
  }
  if (stopped) {
    task.cancel();
  }
}

bool FollowUpAuthorizationRecovery::rechecksSettledAuthorization() const {
  const MutexLock lock{lock_};
  return recheckSettledAuthorization_;
}

void FollowUpAuthorizationRecovery::finishWatcher() {
  const MutexLock lock{lock_};
  watcherRunning_ = false;
  watcherTask_.reset();
  recheckSettledAuthorization_ = false;
}

Task<AuthorizationResult> FollowUpAuthorizationRecovery::waitForAuthorization(
    std::shared_ptr<FollowUpNotificationScheduling> notifications, std::chrono::nanoseconds timeout) {
  return suspended<AuthorizationResult>([self = shared_from_this(), notifications = std::move(notifications),
                                         timeout](AuthorizationContinuation caller) mutable {
    self->addAuthorizationWaiter(std::move(caller), std::move(notifications), timeout);
  });
}

void FollowUpAuthorizationRecovery::addAuthorizationWaiter(
    AuthorizationContinuation caller, std::shared_ptr<FollowUpNotificationScheduling> notifications,
    std::chrono::nanoseconds timeout) {
  const MonotonicInstant due = monotonicInstantAfter(clock_->monotonicNow(), timeout);
  const TaskHandle timer;
  WaiterID id = 0;
  bool requestWasRunning = false;
  bool stopped = false;
  {
    const MutexLock lock{lock_};
    stopped = stopped_;
    if (!stopped) {
      id = nextWaiterID_++;
      authorizationWaiters_.emplace(id, Waiter{.caller = std::move(caller), .timer = timer});
      requestWasRunning = std::exchange(authorizationRequestRunning_, true);
    }
  }
  if (stopped) {
    return caller.resume(AuthorizationResult::stopped); // NOLINT(bugprone-use-after-move): moved only when not stopped.
  }
  if (!requestWasRunning) {
    boost::asio::co_spawn(executor_, requestAuthorization(weak_from_this(), std::move(notifications)),
                          boost::asio::detached);
    installAuthorizationTask(TaskHandle{});
  }
  boost::asio::co_spawn(executor_, expireWaiter(weak_from_this(), clock_, due, id, timer), boost::asio::detached);
}

Task<void> FollowUpAuthorizationRecovery::requestAuthorization(
    std::weak_ptr<FollowUpAuthorizationRecovery> recovery,
    std::shared_ptr<FollowUpNotificationScheduling> notifications) {
  bool granted = false;
  try {
    granted = co_await notifications->requestAuthorization();
  } catch (...) { // NOLINT(bugprone-empty-catch): the port promises not to throw; a port that does has not granted.
  }
  if (const auto self = recovery.lock()) {
    self->finishAuthorizationRequest(granted);
  }
}

Task<void> FollowUpAuthorizationRecovery::expireWaiter(std::weak_ptr<FollowUpAuthorizationRecovery> recovery,
                                                       std::shared_ptr<const Clock> clock, MonotonicInstant due,
                                                       WaiterID id, TaskHandle timer) {
  const SleepEnd end = co_await sleepUntil(std::move(clock), due, std::move(timer));
  if (end == SleepEnd::cancelled) {
    co_return;
  }
  if (const auto self = recovery.lock()) {
    self->expireAuthorizationWaiter(id);
  }
}

void FollowUpAuthorizationRecovery::installAuthorizationTask(TaskHandle task) {
  const MutexLock lock{lock_};
  if (authorizationRequestRunning_ && !stopped_) {
    authorizationTask_ = std::move(task);
  }
}

void FollowUpAuthorizationRecovery::finishAuthorizationRequest(bool granted) {
  Waiters waiters;
  {
    const MutexLock lock{lock_};
    if (!authorizationRequestRunning_) {
      return;
    }
    authorizationRequestRunning_ = false;
    authorizationTask_.reset();
    waiters.swap(authorizationWaiters_);
  }
  resumeAll(std::move(waiters), granted ? AuthorizationResult::granted : AuthorizationResult::denied);
}

void FollowUpAuthorizationRecovery::resumeAll(Waiters waiters, AuthorizationResult result) {
  for (auto& [id, waiter] : waiters) {
    waiter.caller.resume(result);
  }
  for (const auto& [id, waiter] : waiters) {
    waiter.timer.cancel();
  }
}

void FollowUpAuthorizationRecovery::expireAuthorizationWaiter(WaiterID id) {
  Waiters::node_type expired;
  {
    const MutexLock lock{lock_};
    expired = authorizationWaiters_.extract(id);
  }
  if (!expired.empty()) {
    expired.mapped().caller.resume(AuthorizationResult::timedOut);
  }
}

bool FollowUpAuthorizationRecovery::claimReconcile() {
  const MutexLock lock{lock_};
  if (stopped_ || reconcileInFlight_) {
    return false;
  }
  reconcileInFlight_ = true;
  ++reconcileCount_;
  return true;
}

bool FollowUpAuthorizationRecovery::mayContinueReconcile() const {
  const MutexLock lock{lock_};
  return !stopped_ || (drainingReconcile_ && reconcileItemInFlight_);
}

bool FollowUpAuthorizationRecovery::beginReconcileItem() {
  const MutexLock lock{lock_};
  if (stopped_) {
    return false;
  }
  reconcileItemInFlight_ = true;
  return true;
}

void FollowUpAuthorizationRecovery::endReconcileItem() {
  const MutexLock lock{lock_};
  reconcileItemInFlight_ = false;
}

void FollowUpAuthorizationRecovery::finishReconcile() {
  std::vector<ReconcileWaiter> waiters;
  {
    const MutexLock lock{lock_};
    reconcileInFlight_ = false;
    drainingReconcile_ = false;
    reconcileItemInFlight_ = false;
    waiters.swap(reconcileWaiters_);
  }
  for (auto& waiter : waiters) {
    waiter.resume({});
  }
}

bool FollowUpAuthorizationRecovery::isStopped() const {
  const MutexLock lock{lock_};
  return stopped_;
}

FollowUpAuthorizationRecovery::Stopping FollowUpAuthorizationRecovery::markStopped() {
  const MutexLock lock{lock_};
  stopped_ = true;
  watcherRunning_ = false;
  drainingReconcile_ = reconcileInFlight_;
  // The request itself runs on, and will find nobody waiting.
  authorizationTask_.reset();
  return Stopping{.watcherTask = std::exchange(watcherTask_, std::nullopt),
                  .reconcileWasInFlight = reconcileInFlight_,
                  .authorizationWaiters = std::exchange(authorizationWaiters_, {})};
}

/// Stops, and says whether a pass holds the slot.
bool FollowUpAuthorizationRecovery::stopAllWaiting() {
  Stopping stopping = markStopped();
  if (stopping.watcherTask.has_value()) {
    stopping.watcherTask->cancel();
  }
  resumeAll(std::move(stopping.authorizationWaiters), AuthorizationResult::stopped);
  return stopping.reconcileWasInFlight;
}

void FollowUpAuthorizationRecovery::stop() {
  stopAllWaiting();
}

Task<void> FollowUpAuthorizationRecovery::stopAndDrain() {
  const auto self = shared_from_this();
  if (stopAllWaiting()) {
    co_await suspended<std::monostate>([self](ReconcileWaiter waiter) { self->addReconcileWaiter(std::move(waiter)); });
  }
}

void FollowUpAuthorizationRecovery::addReconcileWaiter(ReconcileWaiter waiter) {
  {
    const MutexLock lock{lock_};
    if (reconcileInFlight_) {
      reconcileWaiters_.push_back(std::move(waiter));
      return;
    }
  }
  waiter.resume({});
}

} // namespace orvan::internal
