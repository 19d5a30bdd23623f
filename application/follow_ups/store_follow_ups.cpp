#include "application/follow_ups/store_follow_ups.h"

#include <utility>

#include "application/corrections/follow_up_actions.h"
#include "application/follow_ups/reminders.h"
#include "application/session/listed_follow_up.h"
#include "application/session/session.h"

namespace orvan {

void StoreFollowUps::reconcile(std::shared_ptr<FollowUpNotificationScheduling> centre) const {
  Reminders(settings_, std::move(centre)).reconcile();
}

StoreFollowUps::Completion StoreFollowUps::complete(const std::string& followUpID, Instant now) const {
  Session session(settings_);
  const bool isCompleted = session.writableStore().write(
      [&](Connection& connection) { return completeFollowUp(followUpID, now, connection); });
  session.finish();
  return isCompleted ? Completion::done : Completion::notScheduled;
}

std::optional<std::string> StoreFollowUps::personOf(const std::string& followUpID) const {
  Session session(settings_);
  const auto followUp =
      session.readableStore().read([&](Connection& connection) { return followUpWithID(followUpID, connection); });
  return followUp ? std::optional{followUp->personKey} : std::nullopt;
}

} // namespace orvan
