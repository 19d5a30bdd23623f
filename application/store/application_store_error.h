#pragma once

#include <system_error>

namespace orvan {

/// Why the application cannot make or open its store. Each message is a sentence that says what to do.
enum class ApplicationStoreError {
  storeMissing = 1,
  storeExists,
  /// There is a store and no key for it: making a new key would lose the store for good.
  keyMissingForStore,
  /// Not 32 bytes.
  keyMalformed,
  /// The key file says that the desktop's keyring has the key, and the keyring, open, does not.
  keyNotInKeyring,
  plaintextStore,
  /// Another key made it, it is damaged, or it is no store at all.
  cannotDecrypt,
  schemaMissing,
  /// It decrypts and is marked as somebody else's.
  notOurStore,
  /// It decrypts and holds nothing, as after a creation that was interrupted by an older version of this program.
  storeEmpty,
  /// A newer version of this program made it or wrote it.
  storeNewer,
  /// A folder, a pipe or a device.
  storeNotRegular,
  /// Others than the user can read or write the file or one beside it, or it belongs to somebody else.
  storeNotPrivate,
  /// Others than the user can look into the folder that is the program's own.
  folderNotPrivate,
  /// The file or its folder cannot be opened.
  cannotReachStore,
  storeBusy,
  /// Another program has the store open, and this can only be done without it.
  storeInUse,
  /// It could not be written anew, and is as it was.
  storeUnchanged,
  storeReadOnly,
  diskFull,
  /// The system lacks file handles or memory.
  systemExhausted,
  /// Another file took its place while it was open.
  storeReplaced,
  /// The system failed while it was read.
  cannotReadStore,
  cannotCreate,
  engineCannotEncrypt,
};

std::error_code make_error_code(ApplicationStoreError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::ApplicationStoreError> : std::true_type {};
