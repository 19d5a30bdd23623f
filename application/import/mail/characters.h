#pragma once

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvan {

/// The character at `position` of a UTF-8 text, and moves behind it; negative where the bytes are not UTF-8.
/// `position` is within the text.
inline UChar32 takeCharacter(std::string_view text, std::size_t& position) noexcept {
  auto next = static_cast<std::int32_t>(position);
  const auto size = static_cast<std::int32_t>(text.size());
  UChar32 character = 0;
  U8_NEXT(text.data(), next, size, character); // NOLINT(bugprone-inc-dec-in-conditions): within the macro.
  position = static_cast<std::size_t>(next);
  return character;
}

inline bool isWhiteSpace(UChar32 character) noexcept {
  return u_isUWhiteSpace(character) != 0;
}

/// Appends `character`, or U+FFFD when it is negative.
inline void appendCharacter(std::string& text, UChar32 character) {
  constexpr UChar32 replacement = 0xFFFD;
  std::array<char, U8_MAX_LENGTH> encoded{};
  std::int32_t length = 0;
  U8_APPEND_UNSAFE(encoded.data(), length, character < 0 ? replacement : character);
  text.append(encoded.data(), static_cast<std::size_t>(length));
}

} // namespace orvan
