#pragma once

#include <system_error>

namespace orvan {

/// Why an evidence compiler cannot be made. Thrown as the code of an orvan::Error; the message of the code is the
/// case's name.
enum class AttentionEvidenceCompilerError {
  /// The store key is not 32 bytes long.
  invalidKeyLength = 1,
  /// The store file is an SQLite file without encryption.
  plaintextDatabaseRejected,
  /// The encrypted store could not be opened, or what was opened is not encrypted.
  cannotOpenEncryptedStore,
};

std::error_code make_error_code(AttentionEvidenceCompilerError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::AttentionEvidenceCompilerError> : std::true_type {};
