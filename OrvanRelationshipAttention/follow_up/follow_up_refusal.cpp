#include "OrvanRelationshipAttention/follow_up/follow_up_refusal.h"

namespace orvan {

EffectReasonToken token(FollowUpRefusal refusal) noexcept {
  return refusal == FollowUpRefusal::unknownFollowUp ? EffectReasonToken::followUpNotLive
                                                     : EffectReasonToken::followUpRefused;
}

} // namespace orvan
