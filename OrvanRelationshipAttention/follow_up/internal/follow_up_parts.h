#pragma once

#include <memory>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/log.h"
#include "OrvanRelationshipAttention/disposition_store/follow_up_disposition_applying.h"
#include "OrvanRelationshipAttention/follow_up/authorization_recheck.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_authorization_recovery.h"
#include "OrvanStore/database_pool.h"

/// What the files of this folder share.
namespace orvan::internal {

/// What the copies of one scheduler and the tasks they started share. Never changed after construction.
struct FollowUpParts {
  std::shared_ptr<DatabasePool> pool;
  std::shared_ptr<FollowUpNotificationScheduling> notifications;
  std::shared_ptr<FollowUpDispositionApplying> dispositions;
  AuthorizationRecheck authorizationRecheck;
  std::shared_ptr<FollowUpAuthorizationRecovery> authorizationRecovery;
  Executor executor;
  std::shared_ptr<const Clock> clock;
  LogChannel log;
};

/// Tasks take it by value, and so outlive the scheduler they came from.
using Parts = std::shared_ptr<const FollowUpParts>;

} // namespace orvan::internal
