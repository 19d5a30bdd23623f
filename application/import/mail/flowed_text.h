#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// What becomes of the blank that marks a soft line break.
enum class SoftBreakBlank { kept, deleted };

/// Text that was sent as "format=flowed" with its soft line breaks undone: a line that ends in a blank goes on in the
/// next one of the same quotation depth. Quoted lines keep their ">" marks. `text` is UTF-8.
std::string unflowed(std::string_view text, SoftBreakBlank blank);

} // namespace orvan
