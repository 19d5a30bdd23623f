#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// What a reader of an HTML page sees as running text, roughly: tags gone, an empty line where a block begins or ends,
/// character references resolved. Quoted blocks, styles, scripts and the page's head are left out. `html` is UTF-8.
std::string textOfHtml(std::string_view html);

} // namespace orvan
