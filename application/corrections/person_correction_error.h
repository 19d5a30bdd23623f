#pragma once

#include <system_error>

namespace orvan {

/// Why a correction about people cannot be made. Thrown as the code of an orvan::Error; the message of the code is the
/// case's name, and each front end has its own words for it.
enum class PersonCorrectionError {
  /// Somebody was to be made one with themselves.
  samePerson = 1,
  /// One of the people is hidden, another is not: which of it should hold for them all, only the user knows.
  hiddenAndShown,
  /// It is nobody's address.
  addressUnknown,
  /// The person has no other address.
  onlyAddress,
  /// A name without a letter.
  nameEmpty,
};

std::error_code make_error_code(PersonCorrectionError error) noexcept;

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::PersonCorrectionError> : std::true_type {};
