#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// `text` on one line, with a blank for every character that a terminal or a text view would obey rather than show:
/// control characters, line and paragraph separators, and those that change the writing direction of what follows.
/// Bytes that are not UTF-8 become U+FFFD.
std::string printableText(std::string_view text);

} // namespace orvan
