#pragma once

#include <system_error>

namespace orvan {

/// Why a mailbox cannot be opened or read on. The message of each is a sentence that says what to do.
enum class MailSourceError {
  notFound = 1,
  notPermitted,
  /// An mbox file was expected.
  isAFolder,
  /// A Maildir was expected.
  isAFile,
  /// A folder without "cur" and "new", itself and in the folders right inside it.
  notAMaildir,
  /// The system refused to open or read it for any other reason.
  readFailed,
};

const std::error_category& mailSourceErrorCategory() noexcept;
std::error_code make_error_code(MailSourceError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::MailSourceError> : std::true_type {};
