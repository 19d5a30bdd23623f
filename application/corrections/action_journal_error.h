#pragma once

#include <system_error>

namespace orvan {

/// Why an action is not taken back. Thrown as the code of an orvan::Error; the message of the code is the case's name.
enum class ActionJournalError {
  /// There is no action of that number.
  actionUnknown = 1,
  /// No action is left that could be taken back.
  nothingToTakeBack,
  /// It was taken back before.
  takenBackAlready,
  /// What is dismissed or resolved stays so.
  actionFinal,
  /// It lies too far back.
  actionTooOld,
  /// Something that the action changed was changed since. Thrown as a ChangedSince.
  changedSince,
  /// What is kept of the action cannot be read.
  actionUnreadable,
};

std::error_code make_error_code(ActionJournalError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::ActionJournalError> : std::true_type {};
