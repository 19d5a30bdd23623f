#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "OrvanPlatform/clock.h"

namespace orvan::internal {

/// How registering one reminder ended.
enum class LiveReminderRegistration { registered, notLive, pastDue };

/// Thrown when a registration's time budget ran out.
class FollowUpRegistrationTimeout final : public std::exception {
 public:
  const char* what() const noexcept override { return "registering a reminder took longer than its budget"; }
};

/// The time one registration may take in all, its wait for authorization included.
class FollowUpRegistrationBudget {
 public:
  /// Starts now.
  FollowUpRegistrationBudget(std::shared_ptr<const Clock> clock, std::chrono::nanoseconds timeout);

  MonotonicInstant deadline() const noexcept { return deadline_; }
  /// Not above zero once the budget has run out.
  std::chrono::nanoseconds remaining() const { return deadline_ - clock_->monotonicNow(); }

 private:
  std::shared_ptr<const Clock> clock_;
  MonotonicInstant deadline_;
};

/// Runs `work` on `executor` and gives what it gives, or throws FollowUpRegistrationTimeout when the monotonic clock
/// reaches `deadline` first. `work` is never cancelled: when it loses, it runs on to its end and its result is dropped.
/// `onWorkFinished` is called once when it has ended, however it ended and whoever still waits.
Task<LiveReminderRegistration> racingRegistrationDeadline(Executor executor, std::shared_ptr<const Clock> clock,
                                                          MonotonicInstant deadline,
                                                          std::function<void()> onWorkFinished,
                                                          Task<LiveReminderRegistration> work);

} // namespace orvan::internal
