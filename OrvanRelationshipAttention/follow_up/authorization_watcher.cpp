#include "OrvanRelationshipAttention/follow_up/internal/authorization_watcher.h"

#include <algorithm>
#include <boost/asio/detached.hpp>
#include <string>

#include "OrvanRelationshipAttention/follow_up/internal/reminder_reconciliation.h"

namespace orvan::internal {
namespace {

/// How a watcher ended, in the words of its log line.
using Outcome = std::string;

constexpr auto stopped = "stopped";
constexpr auto windowEnded = "window";
constexpr auto denied = "denied";
constexpr auto reconciled = "reconciled";

/// One run of the watcher.
class Watch {
 public:
  explicit Watch(Parts parts)
      : parts_(std::move(parts)),
        deadline_(monotonicInstantAfter(parts_->clock->monotonicNow(), parts_->authorizationRecheck.window())) {}

  bool isStopped() const { return parts_->authorizationRecovery->isStopped(); }
  bool windowIsOpen() const { return parts_->clock->monotonicNow() < deadline_; }
  const Parts& parts() const noexcept { return parts_; }

  MonotonicInstant nextCheck() const {
    return std::min(deadline_,
                    monotonicInstantAfter(parts_->clock->monotonicNow(), parts_->authorizationRecheck.interval()));
  }

  /// Goes on, or ends, when there was nothing else to end it for.
  std::optional<Outcome> unlessWindowEnded() const {
    return windowIsOpen() ? std::nullopt : std::optional<Outcome>{windowEnded};
  }

 private:
  Parts parts_;
  MonotonicInstant deadline_;
};

Task<std::optional<Outcome>> sleep(const Watch& watch, TaskHandle task) {
  const SleepEnd end = co_await sleepUntil(watch.parts()->clock, watch.nextCheck(), std::move(task));
  if (end == SleepEnd::elapsed) {
    co_return std::nullopt;
  }
  co_return watch.isStopped() ? stopped : windowEnded;
}

Task<std::optional<Outcome>> whileNotGranted(const Watch& watch) {
  const bool undetermined = co_await watch.parts()->notifications->authorizationIsUndetermined();
  if (watch.isStopped()) {
    co_return stopped;
  }
  if (!undetermined && !watch.parts()->authorizationRecovery->rechecksSettledAuthorization()) {
    co_return denied;
  }
  co_return watch.unlessWindowEnded();
}

Task<std::optional<Outcome>> whileGranted(const Watch& watch) {
  co_await reconcileWhenGranted(watch.parts());
  if (watch.isStopped()) {
    co_return stopped;
  }
  const bool owed = co_await liveReminderObligationRemains(watch.parts());
  if (!owed) {
    co_return reconciled;
  }
  co_return watch.unlessWindowEnded();
}

/// One look at the authorization, and what follows from it; nothing when the watcher is to go on.
Task<std::optional<Outcome>> check(const Watch& watch) {
  if (watch.isStopped()) {
    co_return stopped;
  }
  if (!watch.windowIsOpen()) {
    co_return windowEnded;
  }
  const bool granted = co_await watch.parts()->notifications->authorizationGranted();
  if (watch.isStopped()) {
    co_return stopped;
  }
  if (!granted) {
    co_return co_await whileNotGranted(watch);
  }
  co_return co_await whileGranted(watch);
}

Task<Outcome> outcomeOf(const Watch& watch, bool immediately, TaskHandle task) {
  if (!watch.windowIsOpen()) {
    co_return windowEnded;
  }
  for (bool sleepsFirst = !immediately;; sleepsFirst = true) {
    if (sleepsFirst) {
      const auto interrupted = co_await sleep(watch, task);
      if (interrupted.has_value()) {
        co_return *interrupted;
      }
    }
    const auto ended = co_await check(watch);
    if (ended.has_value()) {
      co_return *ended;
    }
  }
}

Task<void> runWatcher(Parts parts, bool immediately, TaskHandle task) {
  const Watch watch{parts};
  Outcome outcome = windowEnded;
  try {
    outcome = co_await outcomeOf(watch, immediately, std::move(task));
  } catch (...) {
    // A port that throws where it may not must not keep the next watcher from being claimed.
    outcome = watch.isStopped() ? stopped : windowEnded;
  }
  parts->log.write("follow-up authorization watcher ended", {{"outcome", outcome}});
  parts->authorizationRecovery->finishWatcher();
}

} // namespace

void startAuthorizationWatcher(const Parts& parts, WatcherStart start) {
  if (!parts->authorizationRecovery->claimWatcher(start.recheckSettledAuthorization)) {
    return;
  }
  parts->log.write("follow-up authorization watcher started");
  const TaskHandle task;
  parts->authorizationRecovery->installWatcherTask(task);
  boost::asio::co_spawn(parts->executor, runWatcher(parts, start.immediately, task), boost::asio::detached);
}

} // namespace orvan::internal
