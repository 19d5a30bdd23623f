#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvan {

/// The first question that the writer of a mail asks in words of their own, for showing to a person; nothing when there
/// is none.
///
/// `text` is the mail's decoded text, UTF-8. Not the writer's own are quoted lines (">", "|"), the line that introduces
/// them ("On Monday Zoë wrote:", in the languages mail programs use), and all that follows a separator of forwarded or
/// answered mail or the signature delimiter.
///
/// A question ends in "?" (or its full-width or Arabic form) outside a web address, and has at least two words, or two
/// letters in a script other than Latin. It is returned on one line and has at most 300 characters (code points); a
/// longer one is cut between two characters as its reader sees them and ends in "…".
///
/// A pure function; may be called from any thread.
std::optional<std::string> firstQuestion(std::string_view text);

} // namespace orvan
