#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// What a reader of an HTML page sees as running text, roughly: tags gone, an empty line where a block begins or ends,
/// character references resolved. Left out are styles, scripts, the page's head, signatures, and what mail programs
/// mark as a quotation or its introduction; a quoted block leaves a line ">" behind. `html` is UTF-8.
std::string textOfHtml(std::string_view html);

} // namespace orvan
