#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <variant>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/internal/continuation.h"
#include "OrvanPlatform/internal/sleep.h"
#include "OrvanPlatform/mutex.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"

namespace orvan::internal {

/// What all copies of one scheduler share about authorization and reconciliation: many callers wait for one request,
/// one watcher is claimed at a time, one reconciliation pass holds the slot at a time, and all of it stops in order.
///
/// Every operation may be called from any thread. One lock guards all state; it is never held while a caller is
/// resumed, a centre is asked or a coroutine is suspended. The tasks started here hold this object weakly: when it is
/// gone, they end without effect. It is owned by shared pointers.
class FollowUpAuthorizationRecovery : public std::enable_shared_from_this<FollowUpAuthorizationRecovery> {
 public:
  enum class AuthorizationResult { granted, denied, timedOut, stopped };

  /// `executor` runs the authorization request and the timeouts of those who wait for it.
  FollowUpAuthorizationRecovery(Executor executor, std::shared_ptr<const Clock> clock);
  /// Stops: whoever still waits is resumed.
  ~FollowUpAuthorizationRecovery();
  FollowUpAuthorizationRecovery(const FollowUpAuthorizationRecovery&) = delete;
  FollowUpAuthorizationRecovery& operator=(const FollowUpAuthorizationRecovery&) = delete;

  /// Waits for the user's answer, asking when nobody is being asked; every waiter of the moment gets the same answer.
  /// timedOut when `timeout` passes first (the request goes on), stopped when recovery stops or has stopped.
  Task<AuthorizationResult> waitForAuthorization(std::shared_ptr<FollowUpNotificationScheduling> notifications,
                                                 std::chrono::nanoseconds timeout);

  /// Makes the caller the one watcher, and says whether it may start. Fails while one runs and after stopping. Unless
  /// stopped, asking for a recheck takes effect on a running watcher too.
  bool claimWatcher(bool recheckSettledAuthorization);
  /// Lets stopping cancel `task`; cancels it at once when stopped.
  void installWatcherTask(TaskHandle task);
  /// Whether the watcher is to keep watching although the user has decided against.
  bool rechecksSettledAuthorization() const;
  /// Lets the next watcher be claimed, with a settled refusal final again.
  void finishWatcher();

  /// Takes the slot for one reconciliation pass; false when it is taken, or after stopping.
  bool claimReconcile();
  /// Asked by a pass before each of its steps: false once stopped, but true while the item in hand is finished.
  bool mayContinueReconcile() const;
  /// Begins one item of the pass; false once stopped.
  bool beginReconcileItem();
  void endReconcileItem();
  /// Gives the slot back, and lets stopAndDrain() return.
  void finishReconcile();

  bool isStopped() const;
  /// For good: resumes every waiter with stopped, cancels the watcher's sleep, lets nothing new start.
  void stop();
  /// The same, and returns once a pass that holds the slot has given it back.
  Task<void> stopAndDrain();

 private:
  using AuthorizationContinuation = Continuation<AuthorizationResult>;
  using WaiterID = std::uint64_t;
  /// `timer` is cancelled when the waiter is taken out: a sleeper keeps an event loop from ending.
  struct Waiter {
    AuthorizationContinuation caller;
    TaskHandle timer;
  };
  using Waiters = std::unordered_map<WaiterID, Waiter>;
  using ReconcileWaiter = Continuation<std::monostate>;

  struct Stopping {
    std::optional<TaskHandle> watcherTask;
    bool reconcileWasInFlight;
    Waiters authorizationWaiters;
  };

  static Task<void> requestAuthorization(std::weak_ptr<FollowUpAuthorizationRecovery> recovery,
                                         std::shared_ptr<FollowUpNotificationScheduling> notifications);
  static Task<void> expireWaiter(std::weak_ptr<FollowUpAuthorizationRecovery> recovery,
                                 std::shared_ptr<const Clock> clock, MonotonicInstant due, WaiterID id,
                                 TaskHandle timer);
  static void resumeAll(Waiters waiters, AuthorizationResult result);

  void addAuthorizationWaiter(AuthorizationContinuation caller,
                              std::shared_ptr<FollowUpNotificationScheduling> notifications,
                              std::chrono::nanoseconds timeout);
  void installAuthorizationTask(TaskHandle task);
  void finishAuthorizationRequest(bool granted);
  void expireAuthorizationWaiter(WaiterID id);
  void addReconcileWaiter(ReconcileWaiter waiter);
  Stopping markStopped();
  bool stopAllWaiting();

  const Executor executor_;
  const std::shared_ptr<const Clock> clock_;

  mutable Mutex lock_;
  bool stopped_ ORVAN_GUARDED_BY(lock_) = false;
  bool watcherRunning_ ORVAN_GUARDED_BY(lock_) = false;
  std::uint64_t watcherStarts_ ORVAN_GUARDED_BY(lock_) = 0;
  std::optional<TaskHandle> watcherTask_ ORVAN_GUARDED_BY(lock_);
  bool reconcileInFlight_ ORVAN_GUARDED_BY(lock_) = false;
  std::uint64_t reconcileCount_ ORVAN_GUARDED_BY(lock_) = 0;
  std::vector<ReconcileWaiter> reconcileWaiters_ ORVAN_GUARDED_BY(lock_);
  bool drainingReconcile_ ORVAN_GUARDED_BY(lock_) = false;
  bool reconcileItemInFlight_ ORVAN_GUARDED_BY(lock_) = false;
  bool recheckSettledAuthorization_ ORVAN_GUARDED_BY(lock_) = false;
  bool authorizationRequestRunning_ ORVAN_GUARDED_BY(lock_) = false;
  std::optional<TaskHandle> authorizationTask_ ORVAN_GUARDED_BY(lock_);
  Waiters authorizationWaiters_ ORVAN_GUARDED_BY(lock_);
  WaiterID nextWaiterID_ ORVAN_GUARDED_BY(lock_) = 0;
};

} // namespace orvan::internal
