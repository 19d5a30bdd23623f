#pragma once

#include <algorithm>
#include <string_view>

namespace orvan {

/// Whether `text` begins with, or holds, one of a list of texts.
bool startsWithOneOf(std::string_view text, const auto& beginnings) {
  return std::ranges::any_of(beginnings, [text](std::string_view beginning) { return text.starts_with(beginning); });
}
bool containsOneOf(std::string_view text, const auto& parts) {
  return std::ranges::any_of(parts, [text](std::string_view part) { return text.contains(part); });
}

} // namespace orvan
