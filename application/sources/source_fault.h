#pragma once

#include <optional>
#include <string>
#include <system_error>

namespace orvan {

/// Why a source cannot be remembered, or cannot be read now. The message of each is a sentence for the user that stands
/// behind the source's path.
enum class SourceFault {
  /// Never was there, as far as we know.
  missing = 1,
  /// Was there when it was remembered.
  gone,
  notPermitted,
  /// A pipe, a socket, a device.
  notAFile,
  /// A folder in which nothing is that we read.
  holdsNothing,
  /// What it held is there no more, as when a disk is not connected to its folder.
  emptied,
  /// It holds something, but not what it held when it was remembered.
  becameSomethingElse,
  /// A folder with so much in it that it is hardly one of mail.
  tooLarge,
  cannotRead,
};

std::error_code make_error_code(SourceFault fault) noexcept;

/// What to say of a remembered source that cannot be read; nothing for errors of anything else.
std::optional<std::string> sentenceOnSource(const std::error_code& code);

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::SourceFault> : std::true_type {};
