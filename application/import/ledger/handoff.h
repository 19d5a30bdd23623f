#pragma once

#include <condition_variable>
#include <optional>
#include <utility>

#include "OrvanPlatform/mutex.h"

namespace orvan {

/// Passes values from one thread to another, hand to hand: the giver waits until its value is taken, so besides the one
/// that the taker works on there is at most one more.
template <typename Value>
class Handoff {
 public:
  /// Waits until the value is taken. False when the taker has gone away.
  bool give(Value value) ORVAN_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    value_ = std::move(value);
    changed_.notify_all();
    while (value_ && !isAbandoned_) {
      changed_.wait(mutex_);
    }
    return !isAbandoned_;
  }

  /// There is no further value.
  void finish() ORVAN_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    isFinished_ = true;
    changed_.notify_all();
  }

  /// Waits for the next value; nothing once the giver has finished.
  std::optional<Value> take() ORVAN_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    while (!value_ && !isFinished_) {
      changed_.wait(mutex_);
    }
    auto taken = std::exchange(value_, std::nullopt);
    changed_.notify_all();
    return taken;
  }

  /// The taker goes away: the giver stops waiting.
  void abandon() ORVAN_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    isAbandoned_ = true;
    changed_.notify_all();
  }

 private:
  Mutex mutex_;
  std::condition_variable_any changed_;
  std::optional<Value> value_ ORVAN_GUARDED_BY(mutex_);
  bool isFinished_ ORVAN_GUARDED_BY(mutex_) = false;
  bool isAbandoned_ ORVAN_GUARDED_BY(mutex_) = false;
};

} // namespace orvan
