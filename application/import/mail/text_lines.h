#pragma once

#include <string_view>

namespace orvan {

/// The first line of `text` with its line break; all of a text without one.
inline std::string_view firstLine(std::string_view text) noexcept {
  const auto lineBreak = text.find('\n');
  return lineBreak == std::string_view::npos ? text : text.substr(0, lineBreak + 1);
}

/// Whether `line` is nothing but its line break.
inline bool isBlankLine(std::string_view line) noexcept {
  return line == "\n" || line == "\r\n";
}

} // namespace orvan
