#include "OrvanSpineCore/effect_reason_token.h"

namespace orvan {

std::string_view caseName(EffectReasonToken token) noexcept {
  switch (token) {
    case EffectReasonToken::reminderNotRegistered:
      return "reminderNotRegistered";
    case EffectReasonToken::notificationsDenied:
      return "notificationsDenied";
    case EffectReasonToken::attentionNotResolved:
      return "attentionNotResolved";
    case EffectReasonToken::followUpRefused:
      return "followUpRefused";
    case EffectReasonToken::messageNotSent:
      return "messageNotSent";
    case EffectReasonToken::meetingNotScheduled:
      return "meetingNotScheduled";
    case EffectReasonToken::sourceDisconnected:
      return "sourceDisconnected";
    case EffectReasonToken::sourceUnavailable:
      return "sourceUnavailable";
    case EffectReasonToken::objectDeleted:
      return "objectDeleted";
    case EffectReasonToken::followUpNotLive:
      return "followUpNotLive";
    case EffectReasonToken::superseded:
      return "superseded";
    case EffectReasonToken::storeUnreadable:
      return "storeUnreadable";
    case EffectReasonToken::storeUnwritable:
      return "storeUnwritable";
    case EffectReasonToken::undoExpired:
      return "undoExpired";
    case EffectReasonToken::unsupported:
      return "unsupported";
    case EffectReasonToken::authorizationPending:
      return "authorizationPending";
  }
  return {};
}

} // namespace orvan
