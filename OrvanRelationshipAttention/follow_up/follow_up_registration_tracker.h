#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

#include "OrvanPlatform/mutex.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"

namespace orvan {

/// Knows which notification keys have registration work running, also work whose caller has stopped waiting for it. May
/// be used from any thread; each operation is whole before the next begins.
class FollowUpRegistrationTracker {
 public:
  /// The one that every scheduler of this process reports to. It lives as long as the process.
  static FollowUpRegistrationTracker& shared();

  void begin(const std::string& key);
  /// Ending a key that was not begun does nothing.
  void end(const std::string& key);
  bool hasActive(const NotificationKeys& keys) const;

 private:
  mutable Mutex mutex_;
  std::unordered_map<std::string, std::size_t> active_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
