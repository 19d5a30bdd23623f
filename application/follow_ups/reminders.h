#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/log.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanStore/database_pool.h"
#include "application/session/session_settings.h"

namespace orvan {

/// How long a program waits for the user when they have yet to allow reminders. Nobody watches a command line for
/// longer; the reminder is set when they do, by whoever reconciles then.
inline constexpr std::chrono::seconds briefWaitForTheUser{3};

/// The reminders of a store's follow-ups, for a program that waits for each step: the follow-up's rows are written
/// first, in the program's own transaction, and then its reminder is set right here.
///
/// Opens the store when it is made, with connections of its own, and closes it when it goes: it waits for a pass that
/// runs, and a registration that outlives its wait may keep the store open until the notification centre has answered.
/// Every call blocks; not to be made on `executor`'s only thread. Making it throws what ApplicationStore::openPool
/// throws.
class Reminders {
 public:
  Reminders(const SessionSettings& settings, std::shared_ptr<FollowUpNotificationScheduling> centre,
            std::chrono::nanoseconds waitForTheUser = briefWaitForTheUser, Executor executor = sharedWorkExecutor(),
            std::shared_ptr<const Clock> clock = std::make_shared<SystemClock>(),
            std::shared_ptr<LogSink> log = systemLogSink());
  ~Reminders();
  Reminders(const Reminders&) = delete;
  Reminders& operator=(const Reminders&) = delete;

  /// Has the follow-up's reminder in the centre, due when the store says. Without a token it is there.
  std::optional<EffectReasonToken> set(const std::string& followUpID);
  /// Takes it out of the centre, also one that was shown.
  void withdraw(const std::string& followUpID);
  /// Brings the whole centre in line with the follow-ups, and takes out the reminders of those that the user hides.
  void reconcile();

 private:
  std::shared_ptr<DatabasePool> pool_;
  std::shared_ptr<FollowUpNotificationScheduling> centre_;
  Executor executor_;
  FollowUpScheduler scheduler_;
};

} // namespace orvan
