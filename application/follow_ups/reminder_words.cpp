#include "application/follow_ups/reminder_words.h"

namespace orvan {

std::string_view inWords(EffectReasonToken token) noexcept {
  switch (token) {
    case EffectReasonToken::reminderNotRegistered:
      return "the reminder service did not take the reminder in time";
    case EffectReasonToken::notificationsDenied:
      return "reminders are not allowed";
    case EffectReasonToken::attentionNotResolved:
      return "the matter could not be marked as settled";
    case EffectReasonToken::followUpRefused:
      return "it says nothing, or its time has passed";
    case EffectReasonToken::messageNotSent:
      return "the message was not handed to its account";
    case EffectReasonToken::meetingNotScheduled:
      return "the calendar did not take the meeting";
    case EffectReasonToken::sourceDisconnected:
      return "the source has to be connected again";
    case EffectReasonToken::sourceUnavailable:
      return "the source did not take the change in time";
    case EffectReasonToken::objectDeleted:
      return "what it is about was deleted";
    case EffectReasonToken::followUpNotLive:
      return "it is not scheduled any more";
    case EffectReasonToken::superseded:
      return "something that was done later has overtaken it";
    case EffectReasonToken::storeUnreadable:
      return "the store could not be read";
    case EffectReasonToken::storeUnwritable:
      return "the store could not be written";
    case EffectReasonToken::undoExpired:
      return "it can no longer be taken back";
    case EffectReasonToken::unsupported:
      return "the source cannot do that";
    case EffectReasonToken::authorizationPending:
      return "the desktop has asked whether reminders are allowed";
  }
  return "something unexpected went wrong";
}

} // namespace orvan
