#pragma once

#include <system_error>

namespace orvan {

/// Why there is no backup, or nothing is restored from one. Each message is a sentence that says what to do.
enum class BackupError {
  nameTaken = 1,
  /// A file of the store's, or of its key, is or may come to be there.
  nameIsTheStores,
  folderMissing,
  folderNotWritable,
  noRoom,
  /// The store opens, and not all of it can be read.
  storeDamaged,
  /// What was written does not read back as the store.
  copyDamaged,
  backupMissing,
  /// A folder, a pipe or a device.
  backupNotRegular,
  backupUnreachable,
  /// The backup and the store that it is to replace are the same file.
  backupIsTheStore,
  /// There is no key, neither the store's nor another.
  noKey,
  /// Another key made it, it is damaged at its beginning, or it is no backup at all.
  wrongKey,
  plaintext,
  notOurs,
  newer,
  backupDamaged,
};

std::error_code make_error_code(BackupError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::BackupError> : std::true_type {};
