#include "OrvanPlatform/white_space.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace orvan {
namespace {

/// Printable ASCII, which most identifiers begin and end with, needs no decoding.
bool isVisibleAscii(char byte) noexcept {
  return byte > ' ' && byte <= '~';
}

constexpr std::size_t longestEncoding = U8_MAX_LENGTH;

/// How many bytes the character at the start of `text` has when it is white space; 0 when it is not.
std::size_t leadingWhiteSpace(std::string_view text) noexcept {
  if (text.empty() || isVisibleAscii(text.front())) {
    return 0;
  }
  const auto first = text.substr(0, longestEncoding);
  std::int32_t next = 0;
  UChar32 character = 0;
  const auto size = static_cast<std::int32_t>(first.size());
  U8_NEXT(first.data(), next, size, character); // NOLINT(bugprone-inc-dec-in-conditions): within the macro.
  return character >= 0 && u_isUWhiteSpace(character) != 0 ? static_cast<std::size_t>(next) : 0;
}

/// The same for the character at the end of `text`.
std::size_t trailingWhiteSpace(std::string_view text) noexcept {
  if (text.empty() || isVisibleAscii(text.back())) {
    return 0;
  }
  const auto last = text.substr(text.size() - std::min(text.size(), longestEncoding));
  const auto end = static_cast<std::int32_t>(last.size());
  std::int32_t start = end;
  UChar32 character = 0;
  U8_PREV(last.data(), 0, start, character);
  return character >= 0 && u_isUWhiteSpace(character) != 0 ? static_cast<std::size_t>(end - start) : 0;
}

} // namespace

std::string_view trimmed(std::string_view text) noexcept {
  while (const auto length = leadingWhiteSpace(text)) {
    text.remove_prefix(length);
  }
  while (const auto length = trailingWhiteSpace(text)) {
    text.remove_suffix(length);
  }
  return text;
}

bool isTrimmedAndNotEmpty(std::string_view text) noexcept {
  return !text.empty() && trimmed(text).size() == text.size();
}

} // namespace orvan
