#pragma once

#include <system_error>

namespace orvan {

/// Why a session cannot do what the user asked for. Thrown as the code of an orvan::Error; the message of the code is
/// the case's name, and each front end has its own words for it.
enum class SessionError {
  /// No person has that key, name or address.
  personUnknown = 1,
  /// Several people have that name or address.
  personAmbiguous,
  /// Nothing stands for the person now, so there is nothing to decide about.
  noReasonNow,
  /// The item rests on a reason that another has replaced. Thrown as a ReasonChanged, which has the reason that holds.
  reasonChanged,
  /// A snooze would be over already.
  snoozeEndPast,
  /// The user hides the person.
  personHidden,
  /// The item is part of no conversation.
  conversationUnknown,
  /// Nothing that is hidden goes by that word.
  nothingHidden,
  /// The word means several things. Thrown as a SeveralMeant.
  severalMeant,
  /// The item's reason is none that could be wrong.
  reasonStands,
  /// There is no follow-up of that name, or the person has none of the state that is asked for.
  followUpUnknown,
  /// Several follow-ups go by that. Thrown as a SeveralFollowUps.
  followUpAmbiguous,
  /// The follow-up was completed or cancelled, or for reopening: it was not completed.
  followUpElsewhere,
  /// The folder for a new store or its key cannot be made.
  cannotMakeFolder,
};

std::error_code make_error_code(SessionError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::SessionError> : std::true_type {};
