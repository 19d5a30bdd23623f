#pragma once

#include <system_error>

namespace orvan {

/// Why a disposition store cannot be made. Thrown as the code of an orvan::Error; the message of the code is the case's
/// name.
enum class AttentionDispositionStoreError {
  /// The store key is not 32 bytes long.
  invalidKeyLength = 1,
  /// The store file is an SQLite file without encryption.
  plaintextDatabaseRejected,
  /// The encrypted store could not be opened, or what was opened is not encrypted or does not overwrite what it
  /// deletes.
  cannotOpenEncryptedStore,
  /// The store opened and lacks a table that dispositions need.
  canonicalSchemaUnavailable,
};

std::error_code make_error_code(AttentionDispositionStoreError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::AttentionDispositionStoreError> : std::true_type {};
