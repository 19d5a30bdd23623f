#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// `bytes` in `charset` as UTF-8; what cannot be read becomes U+FFFD. Of an unknown or missing charset, and of ASCII
/// that is none, the bytes are taken for UTF-8 if they are valid, else for Windows-1252, which can read all bytes.
std::string utf8FromCharset(std::string_view bytes, std::string_view charset);

/// `text` as valid UTF-8 on one line: each run of white space and control characters one blank, none at the ends;
/// bytes that are not UTF-8 become U+FFFD.
std::string onOneLine(std::string_view text);

/// Lower-cased, independently of the user's language. `text` is valid UTF-8.
std::string lowerCased(std::string_view text);

/// The same for ASCII letters only; other bytes stay.
std::string lowerCasedAscii(std::string_view text);

} // namespace orvan
