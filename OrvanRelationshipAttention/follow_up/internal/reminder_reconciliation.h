#pragma once

#include <functional>
#include <string>

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_parts.h"

/// How the notification centre is brought in line with the live follow-ups.
namespace orvan::internal {

/// One pass, unless another one runs or recovery was stopped.
Task<void> reconcileGuarded(Parts parts);
/// The same for the watcher, which has seen authorization granted: asks once more with the slot held.
Task<void> reconcileWhenGranted(Parts parts);

/// Whether a live follow-up that is yet to come due lacks its reminder. True when the store or the centre cannot say.
Task<bool> liveReminderObligationRemains(Parts parts);

Task<void> cancelPairReminder(Parts parts, std::string sourceObjectID, std::string personID);
Task<void> cancelIdentifiedReminder(Parts parts, std::string followUpID);

} // namespace orvan::internal
