#include "application/import/mail/from_line.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "application/import/mail/text_search.h"

namespace orvan {
namespace {

using namespace std::string_view_literals;

constexpr std::array weekdays{"Mon"sv, "Tue"sv, "Wed"sv, "Thu"sv, "Fri"sv, "Sat"sv, "Sun"sv};
constexpr std::array months{"Jan"sv, "Feb"sv, "Mar"sv, "Apr"sv, "May"sv, "Jun"sv,
                            "Jul"sv, "Aug"sv, "Sep"sv, "Oct"sv, "Nov"sv, "Dec"sv};

/// A line that goes on beyond this is none that a mail program wrote.
constexpr std::size_t longestLine = 1000;
/// Weekday, month, day, time, year, and a zone of up to two words.
constexpr std::size_t fewestDateWords = 5;
constexpr std::size_t mostDateWords = 7;

bool isLetter(char byte) noexcept {
  return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

bool isNumber(std::string_view word, std::size_t fewest, std::size_t most) noexcept {
  return word.size() >= fewest && word.size() <= most && std::ranges::all_of(word, isDigit);
}

/// "9:05" or "09:05:00".
bool isTime(std::string_view word) noexcept {
  const auto colons = std::ranges::count(word, ':');
  return word.size() >= 4 && word.size() <= 8 && (colons == 1 || colons == 2) && isDigit(word.front()) &&
         std::ranges::all_of(word, [](char byte) { return byte == ':' || isDigit(byte); });
}

bool isZone(std::string_view word) noexcept {
  const bool isOffset = word.starts_with('+') || word.starts_with('-');
  return isOffset ? isNumber(word.substr(1), 4, 4) : word.size() <= 5 && std::ranges::all_of(word, isLetter);
}

/// A year among zones.
bool endsDate(std::span<const std::string_view> words) noexcept {
  const auto isYear = [](std::string_view word) { return isNumber(word, 4, 4); };
  return std::ranges::count_if(words, isYear) == 1 &&
         std::ranges::all_of(words, [&](std::string_view word) { return isYear(word) || isZone(word); });
}

bool isDate(std::span<const std::string_view> words) noexcept {
  return isOneOf(words[0], weekdays) && isOneOf(words[1], months) && isNumber(words[2], 1, 2) && isTime(words[3]) &&
         endsDate(words.subspan(4));
}

std::string_view takeLastWord(std::string_view& text) noexcept {
  constexpr auto blanks = " \t\r\n"sv;
  text = text.substr(0, text.find_last_not_of(blanks) + 1);
  const auto start = text.find_last_of(blanks) + 1;
  const auto word = text.substr(start);
  text = text.substr(0, start);
  return word;
}

} // namespace

bool isDatedFromLine(std::string_view line) noexcept {
  constexpr auto start = "From "sv;
  if (!line.starts_with(start) || line.size() > longestLine) {
    return false;
  }
  auto before = line.substr(start.size());
  std::array<std::string_view, mostDateWords> words;
  for (std::size_t count = 1; count <= mostDateWords; ++count) {
    words[mostDateWords - count] = takeLastWord(before);
    const bool hasSender = before.find_first_not_of(" \t") != std::string_view::npos;
    if (hasSender && count >= fewestDateWords && isDate(std::span{words}.last(count))) {
      return true;
    }
  }
  return false;
}

bool beginsHeaderField(std::string_view line) noexcept {
  const auto colon = line.find(':');
  if (colon == std::string_view::npos || colon == 0 || line.substr(colon + 1).starts_with("//")) {
    return false;
  }
  return std::ranges::all_of(line.substr(0, colon), [](char byte) { return byte > ' ' && byte <= '~'; });
}

} // namespace orvan
