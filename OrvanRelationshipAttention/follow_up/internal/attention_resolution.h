#pragma once

#include <optional>
#include <string>

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_parts.h"
#include "OrvanSpineCore/effect_reason_token.h"

/// How the user's settling of a follow-up reaches its attention item. The follow-up itself stays as it is.
namespace orvan::internal {

/// By the pair's open loop, whatever the row says.
Task<std::optional<EffectReasonToken>> resolvePairAttention(Parts parts, std::string sourceObjectID,
                                                            std::string personID, Instant now);
/// By the open loop that the row names.
Task<std::optional<EffectReasonToken>> resolveIdentifiedAttention(Parts parts, std::string followUpID, Instant now);

} // namespace orvan::internal
