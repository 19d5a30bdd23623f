#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace orvan {

/// The lines of a text, each trimmed.
using TextLines = std::span<const std::string_view>;

/// Which of the lines are marked as quoted from another mail, or from a chat: by ">" or "|", by initials or a name
/// ("RB>", "John>"), or, where two such lines stand together, by ":", "}" or "#".
std::vector<bool> quotedLines(TextLines lines);

struct Attribution {
  /// 0 when there is none.
  std::size_t lineCount = 0;
  /// It has a date or an address, so it introduces a quotation whatever follows.
  bool isCertain = false;
};

/// The lines at the start of `lines` that introduce a quotation ("On Monday Zoë wrote:"), in the languages mail
/// programs use; they may be wrapped.
Attribution attributionAtStart(TextLines lines);

/// How many lines at the start of `lines` part the mail from another one below, which is quoted or forwarded: a titled
/// rule, or the head of a mail; 0 when none does.
std::size_t separatorAtStart(TextLines lines);

} // namespace orvan
