#pragma once

#include <system_error>

namespace orvan {

/// What keeps an EncryptedStore from being opened or made, as far as it is found here. Thrown as the code of an
/// orvan::Error.
enum class EncryptedStoreError {
  storeMissing = 1,
  /// Something has the name that a new store is to get.
  storeExists,
  /// What lies at the path, or where the engine keeps its log, is a folder, a pipe or a device.
  notRegularFile,
  /// Others than the user can read or write the file or one beside it, or it belongs to somebody else.
  notPrivate,
  /// The file is an SQLite database without encryption.
  plaintext,
  /// The key is not 32 bytes long.
  invalidKeyLength,
  /// The engine in use cannot encrypt.
  engineCannotEncrypt,
  /// What is deleted would stay readable in the file to those who have the key.
  deletedStaysReadable,
  /// The store decrypts, and is not marked as one with the canonical tables.
  notCanonical,
  /// The store decrypts, and there is nothing in it at all.
  empty,
  /// Its tables are of an older version than this program's.
  schemaOlder,
  /// Its tables are of a newer version than this program knows.
  schemaNewer,
};

std::error_code make_error_code(EncryptedStoreError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::EncryptedStoreError> : std::true_type {};
