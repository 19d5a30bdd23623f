#pragma once

#include <system_error>

namespace orvan {

/// Why the reminders' file cannot be opened. Each message is a sentence that says what to do. What keeps the key from
/// being read is told as a CredentialVaultError or an ApplicationStoreError, as for the store.
enum class ReminderFileError {
  /// Another program has it.
  inUse = 1,
  /// A newer version of this program made it or wrote it.
  newer,
  /// There is a file and no key for it: a new key would lose the reminders for good.
  keyMissing,
  /// Others than the user can read or write it or what lies beside it, or it belongs to somebody else.
  notPrivate,
  /// The folder for it cannot be made.
  cannotMakeFolder,
  /// The system failed to read or write it.
  unusable,
};

std::error_code make_error_code(ReminderFileError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::ReminderFileError> : std::true_type {};
