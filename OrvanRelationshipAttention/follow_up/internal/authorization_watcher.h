#pragma once

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_parts.h"

namespace orvan::internal {

struct WatcherStart {
  /// Keep watching although the user has decided against notifications.
  bool recheckSettledAuthorization;
  /// Check before the first sleep.
  bool immediately;
};

/// Starts the watcher, unless one runs or recovery was stopped: a background task that asks from time to time whether
/// notifications are allowed and then reconciles, until no reminder is owed, its window ends, the user has decided
/// against, or recovery is stopped. It keeps `parts` until it ends; stopping ends it.
void startAuthorizationWatcher(const Parts& parts, WatcherStart start);

} // namespace orvan::internal
