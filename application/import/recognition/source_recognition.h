#pragma once

#include <filesystem>
#include <system_error>

namespace orvan {

/// What a file is instead of the mailbox, calendar or contact cards it was given as. The message of each is a sentence
/// for the user.
enum class WrongSource {
  isACalendar = 1,
  isAMailbox,
  isContactCards,
  isADatabase,
  /// Neither mail, calendar nor cards in any form we read: a store, an archive, a picture.
  isNotText,
  /// A folder, given as a calendar file.
  isAFolder,
  /// Text without the beginning of any mail.
  holdsNoMail,
};

std::error_code make_error_code(WrongSource fault) noexcept;

// Each looks at the beginning of `file` before it is imported, so that a mistaken one is told by what it is and leaves
// no trace in the store. Throws Error with a WrongSource. What is not there, cannot be read or can be read only once
// (a pipe) passes: the source itself says what is wrong with that.

/// Passes what is or may be an mbox file; an empty one is, without mails.
void requireMbox(const std::filesystem::path& file);

/// Passes what is or may be an iCalendar file.
void requireCalendar(const std::filesystem::path& file);

/// Passes what is or may be a file of contact cards, and folders.
void requireCards(const std::filesystem::path& file);

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::WrongSource> : std::true_type {};
