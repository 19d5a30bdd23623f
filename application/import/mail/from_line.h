#pragma once

#include <string_view>

namespace orvan {

/// Whether a line separates mails of an mbox file beyond doubt: "From ", a sender, and the date of delivery in the form
/// of C's asctime(), which may have a time zone before or after the year.
bool isDatedFromLine(std::string_view line) noexcept;

/// Whether a line begins a header field: a name, a colon, and no more of an address on the web.
bool beginsHeaderField(std::string_view line) noexcept;

} // namespace orvan
