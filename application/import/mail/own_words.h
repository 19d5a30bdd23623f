#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// The lines of a mail's text that its writer wrote: without quoted lines and what introduces them, and nothing after a
/// separator of forwarded or answered mail or the signature delimiter. A gap leaves an empty line.
std::string ownWords(std::string_view text);

} // namespace orvan
