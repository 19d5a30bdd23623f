#pragma once

#include <optional>
#include <string>

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_parts.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_registration_race.h"
#include "OrvanSpineCore/effect_reason_token.h"

/// How one live follow-up gets its reminder. All of it runs on the scheduler's executor and reads the store there.
namespace orvan::internal {

/// Under the pair's key, for the pair's live follow-up that is due at `dueAt`.
Task<std::optional<EffectReasonToken>> registerPairReminder(Parts parts, std::string sourceObjectID,
                                                            std::string personID, Instant dueAt);

/// Under the follow-up's id, at the time its row says.
Task<std::optional<EffectReasonToken>> registerIdentifiedReminder(Parts parts, std::string followUpID);

/// The same without asking for authorization and without tokens, within `budget` or, without one, within a new one.
/// Throws what the notification centre or the store throws, and FollowUpRegistrationTimeout.
Task<LiveReminderRegistration> registerLiveReminder(Parts parts, std::string followUpID, bool refusePastDue,
                                                    std::optional<FollowUpRegistrationBudget> budget);

} // namespace orvan::internal
