#include "application/cli/terminal_text.h"

#include <sys/ioctl.h>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace orvan {
namespace {

constexpr std::string_view ellipsis = "...";

std::size_t columnsOf(UChar32 character) {
  const auto width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// A character with its accents, or the parts of one picture: as wide as the widest of them.
std::size_t columnsOf(const icu::UnicodeString& text, std::int32_t from, std::int32_t to) {
  std::size_t columns = 0;
  for (auto at = from; at < to; at = text.moveIndex32(at, 1)) {
    columns = std::max(columns, columnsOf(text.char32At(at)));
  }
  return columns;
}

std::unique_ptr<icu::BreakIterator> charactersIn(const icu::UnicodeString& text) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::BreakIterator> characters{
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status)};
  if (U_FAILURE(status) != 0) {
    return nullptr;
  }
  characters->setText(text);
  return characters;
}

icu::UnicodeString decoded(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

/// How much of the text, from its start, fits.
std::int32_t fitting(const icu::UnicodeString& text, std::size_t columns, icu::BreakIterator& characters) {
  std::size_t taken = 0;
  auto from = characters.first();
  for (auto to = characters.next(); to != icu::BreakIterator::DONE; to = characters.next()) {
    taken += columnsOf(text, from, to);
    if (taken > columns) {
      return from;
    }
    from = to;
  }
  return text.length();
}

} // namespace

std::optional<std::size_t> columnsOfStandardOutput() {
  winsize size{};
  const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? std::optional<std::size_t>{size.ws_col} : std::nullopt;
}

std::size_t columnsOf(std::string_view text) {
  const auto whole = decoded(text);
  const auto characters = charactersIn(whole);
  if (characters == nullptr) {
    return text.size();
  }
  std::size_t columns = 0;
  auto from = characters->first();
  for (auto to = characters->next(); to != icu::BreakIterator::DONE; to = characters->next()) {
    columns += columnsOf(whole, from, to);
    from = to;
  }
  return columns;
}

std::string cutToColumns(std::string_view text, std::size_t columns) {
  const auto whole = decoded(text);
  const auto characters = charactersIn(whole);
  if (characters == nullptr) {
    return std::string{text};
  }
  if (fitting(whole, columns, *characters) == whole.length()) {
    return std::string{text};
  }
  std::string cut;
  whole.tempSubString(0, fitting(whole, columns - std::min(columns, ellipsis.size()), *characters)).toUTF8String(cut);
  return cut.append(ellipsis);
}

} // namespace orvan
