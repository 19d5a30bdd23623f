#pragma once

#include <algorithm>
#include <string_view>

namespace orvan {

/// An ASCII one.
inline bool isDigit(char byte) noexcept {
  return byte >= '0' && byte <= '9';
}

/// Whether `text` is one of a list of texts.
bool isOneOf(std::string_view text, const auto& texts) {
  return std::ranges::any_of(texts, [text](std::string_view known) { return known == text; });
}
/// Whether `text` begins with, or holds, one of a list of texts.
bool startsWithOneOf(std::string_view text, const auto& beginnings) {
  return std::ranges::any_of(beginnings, [text](std::string_view beginning) { return text.starts_with(beginning); });
}
bool containsOneOf(std::string_view text, const auto& parts) {
  return std::ranges::any_of(parts, [text](std::string_view part) { return text.contains(part); });
}

} // namespace orvan
