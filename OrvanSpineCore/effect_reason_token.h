#pragma once

#include <string_view>

namespace orvan {

/// Why an effect of an action was not carried out, for the application to word and to act on. No token means that it
/// was. The order is part of the interface: tokens may be stored by position.
enum class EffectReasonToken {
  /// The notification centre refused the reminder, or did not take it in time. It is tried again.
  reminderNotRegistered,
  /// The user does not allow notifications.
  notificationsDenied,
  /// The matter could not be marked as settled.
  attentionNotResolved,
  /// What was asked for cannot be scheduled: it has no title, or its time has passed.
  followUpRefused,
  /// The message was not handed to its account.
  messageNotSent,
  /// The calendar did not take the meeting.
  meetingNotScheduled,
  /// The source account has to be connected again.
  sourceDisconnected,
  /// The source did not take the change in time. It is tried again.
  sourceUnavailable,
  /// What the action is about has been deleted.
  objectDeleted,
  /// There is no such follow-up, or it is not scheduled any more.
  followUpNotLive,
  /// Another action has overtaken this one.
  superseded,
  /// The store could not be read.
  storeUnreadable,
  /// The store could not be written.
  storeUnwritable,
  /// The action can no longer be undone.
  undoExpired,
  /// The source cannot do this.
  unsupported,
  /// The user has yet to decide about notifications. The reminder is registered once they are allowed.
  authorizationPending,
};

/// The token's case name: "followUpNotLive".
std::string_view caseName(EffectReasonToken token) noexcept;

} // namespace orvan
