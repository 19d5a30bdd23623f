#include "application/import/mail/mail_file.h"

#include <system_error>

#include "OrvanPlatform/error.h"
#include "application/import/mail/line_reader.h"

namespace orvan {
namespace {

/// Where the flags' mark ":2," begins, or the name ends. File systems that forbid the colon have "!" or ";" in its
/// place.
std::size_t startOfFlags(std::string_view name) noexcept {
  const auto comma = name.rfind("2,");
  const bool isMark =
      comma != std::string_view::npos && comma != 0 && std::string_view{":;!"}.contains(name[comma - 1]);
  return isMark ? comma - 1 : name.size();
}

bool isMailFile(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

} // namespace

std::string_view lastingName(std::string_view name) noexcept {
  return name.substr(0, startOfFlags(name));
}

std::optional<MailSkip> skipForFlags(std::string_view name) noexcept {
  const auto flags = name.substr(startOfFlags(name));
  if (flags.contains('T')) {
    return MailSkip{MailSkipReason::trashed};
  }
  if (flags.contains('D')) {
    return MailSkip{MailSkipReason::draft};
  }
  return std::nullopt;
}

MailItem readMailFile(const std::filesystem::path& file, MailParser& parser, RawMail& space) {
  // Anything else than a file, a pipe for one, could keep the reader waiting for ever.
  if (!isMailFile(file)) {
    return MailSkip{MailSkipReason::unreadable};
  }
  try {
    LineReader lines{file};
    space.clear();
    for (; lines.current(); lines.advance()) {
      space.append(*lines.current());
    }
  } catch (const Error&) {
    return MailSkip{MailSkipReason::unreadable};
  }
  return parser.parse(space);
}

} // namespace orvan
