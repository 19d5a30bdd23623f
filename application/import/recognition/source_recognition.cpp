#include "application/import/recognition/source_recognition.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "OrvanPlatform/error.h"
#include "application/import/mail/mbox_source.h"

namespace orvan {
namespace {

class WrongSourceCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.wrong_source"; }

  std::string message(int value) const override {
    switch (static_cast<WrongSource>(value)) {
      case WrongSource::isACalendar:
        return "This is a calendar; import it as a calendar.";
      case WrongSource::isAMailbox:
        return "This is a mailbox; import it as a mailbox.";
      case WrongSource::isContactCards:
        return "These are contact cards; import them as contact cards.";
      case WrongSource::isADatabase:
        return "This is a database; export mail as mbox and calendars as .ics from the program that keeps it, and "
               "import those.";
      case WrongSource::isNotText:
        return "This is neither mail nor a calendar nor contact cards; if it is packed, unpack it and import what is "
               "inside.";
      case WrongSource::isAFolder:
        return "This is a folder, not a calendar; name the .ics files inside it.";
      case WrongSource::holdsNoMail:
        return "There is no mail in it; name a file in mbox form, in which each mail begins with a line \"From ...\".";
    }
    return "The file cannot be imported.";
  }
};

/// Far more than stands before the first telling byte.
constexpr std::size_t headLength = 64 * std::size_t{1024};

/// The beginning of a file that can be read again; nothing of any other.
std::optional<std::string> headOf(const std::filesystem::path& file) {
  std::error_code unreachable;
  if (!std::filesystem::is_regular_file(file, unreachable)) {
    return std::nullopt;
  }
  std::ifstream stream(file, std::ios::binary);
  std::string head(headLength, '\0');
  stream.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(stream.gcount()));
  return head;
}

enum class Kind { calendar, cards, mailbox, database, notText, otherText };

/// In any case of its letters, as calendars and cards are read.
bool starts(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         std::ranges::equal(text.substr(0, beginning.size()), beginning, {},
                            [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
}

std::string_view withoutMarkAndBlankLines(std::string_view text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) {
    text.remove_prefix(byteOrderMark.size());
  }
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  return text;
}

Kind kindOf(std::string_view head) {
  using namespace std::string_view_literals;
  if (head.starts_with("SQLite format 3\0"sv)) {
    return Kind::database;
  }
  const auto text = withoutMarkAndBlankLines(head);
  if (starts(text, "BEGIN:VCALENDAR")) {
    return Kind::calendar;
  }
  if (starts(text, "BEGIN:VCARD")) {
    return Kind::cards;
  }
  // A mail may hold any bytes further on.
  if (text.starts_with("From ")) {
    return Kind::mailbox;
  }
  return head.contains('\0') ? Kind::notText : Kind::otherText;
}

[[noreturn]] void refuse(WrongSource fault) {
  throw Error(fault, "looking at the beginning of a source");
}

bool isTextWithoutMail(const std::optional<MailItem>& item) {
  const auto* skip = item ? std::get_if<MailSkip>(&*item) : nullptr;
  return skip != nullptr && skip->reason == MailSkipReason::notAMailbox;
}

/// By the reader's own rules for where a mail begins.
bool holdsTextButNoMail(const std::filesystem::path& file) {
  MboxSource source(file);
  return isTextWithoutMail(source.next()) && !source.next();
}

/// Refuses what is clearly something else than the wanted kind. Other text may be anything.
void requireKindOrText(Kind found, Kind wanted) {
  if (found == wanted) {
    return;
  }
  switch (found) {
    case Kind::calendar:
      refuse(WrongSource::isACalendar);
    case Kind::cards:
      refuse(WrongSource::isContactCards);
    case Kind::mailbox:
      refuse(WrongSource::isAMailbox);
    case Kind::database:
      refuse(WrongSource::isADatabase);
    case Kind::notText:
      refuse(WrongSource::isNotText);
    case Kind::otherText:
      break;
  }
}

} // namespace

std::error_code make_error_code(WrongSource fault) noexcept {
  static const WrongSourceCategory category;
  return {static_cast<int>(fault), category};
}

void requireMbox(const std::filesystem::path& file) {
  const auto head = headOf(file);
  if (!head) {
    return;
  }
  const auto found = kindOf(*head);
  requireKindOrText(found, Kind::mailbox);
  if (found == Kind::otherText && holdsTextButNoMail(file)) {
    refuse(WrongSource::holdsNoMail);
  }
}

void requireCalendar(const std::filesystem::path& file) {
  std::error_code unreachable;
  if (std::filesystem::is_directory(file, unreachable)) {
    refuse(WrongSource::isAFolder);
  }
  if (const auto head = headOf(file)) {
    requireKindOrText(kindOf(*head), Kind::calendar);
  }
}

void requireCards(const std::filesystem::path& file) {
  if (const auto head = headOf(file)) {
    requireKindOrText(kindOf(*head), Kind::cards);
  }
}

} // namespace orvan
