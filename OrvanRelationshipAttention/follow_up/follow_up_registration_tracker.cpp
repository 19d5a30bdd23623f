#include "OrvanRelationshipAttention/follow_up/follow_up_registration_tracker.h"

#include <algorithm>

namespace orvan {

FollowUpRegistrationTracker& FollowUpRegistrationTracker::shared() {
  // Never destroyed: work that outlives its caller may still report while the process exits.
  static auto* const tracker = new FollowUpRegistrationTracker;
  return *tracker;
}

void FollowUpRegistrationTracker::begin(const std::string& key) {
  const MutexLock lock{mutex_};
  ++active_[key];
}

void FollowUpRegistrationTracker::end(const std::string& key) {
  const MutexLock lock{mutex_};
  const auto count = active_.find(key);
  if (count != active_.end() && --count->second == 0) {
    active_.erase(count);
  }
}

bool FollowUpRegistrationTracker::hasActive(const NotificationKeys& keys) const {
  const MutexLock lock{mutex_};
  return std::ranges::any_of(keys,
                             [this](const std::string& key) ORVAN_REQUIRES(mutex_) { return active_.contains(key); });
}

} // namespace orvan
