#include "application/import/mail/flowed_text.h"

#include <algorithm>
#include <cstddef>

#include "application/import/mail/text_lines.h"

namespace orvan {
namespace {

std::string_view withoutLineEnd(std::string_view line) noexcept {
  for (const char end : {'\n', '\r'}) {
    if (line.ends_with(end)) {
      line.remove_suffix(1);
    }
  }
  return line;
}

} // namespace

std::string unflowed(std::string_view text, SoftBreakBlank blank) {
  std::string result;
  result.reserve(text.size());
  std::size_t openDepth = 0;
  bool isOpen = false;
  while (!text.empty()) {
    const auto whole = firstLine(text);
    text.remove_prefix(whole.size());
    auto line = withoutLineEnd(whole);
    const auto depth = std::min(line.find_first_not_of('>'), line.size());
    line.remove_prefix(depth);
    // A blank in front is put there so that "From " and ">" can be sent.
    if (line.starts_with(' ')) {
      line.remove_prefix(1);
    }
    const bool isSignature = line == "-- ";
    if (!isOpen || depth != openDepth || isSignature) {
      result.append(result.empty() ? "" : "\n").append(depth, '>').append(depth > 0 ? " " : "");
    }
    isOpen = line.ends_with(' ') && !isSignature;
    openDepth = depth;
    if (isOpen && blank == SoftBreakBlank::deleted) {
      line.remove_suffix(1);
    }
    result.append(line);
  }
  return result;
}

} // namespace orvan
