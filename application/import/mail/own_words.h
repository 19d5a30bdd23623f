#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// What the writer of a mail says in words of their own: one paragraph or list entry on each line, and an empty line
/// where something of somebody else's was left out.
///
/// Left out are quotations and what introduces them, patches, code and logs, signatures, legal notices, and what mail
/// programs and signing programs put around a text. What stands below a quotation counts again; nothing does below
/// a patch, a signature delimiter, or a separator of forwarded or answered mail. Of bulk mail nothing is left.
///
/// `text` is the mail's decoded text, UTF-8. A pure function; may be called from any thread.
std::string ownWords(std::string_view text);

} // namespace orvan
