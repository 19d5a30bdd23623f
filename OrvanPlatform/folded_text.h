#pragma once

#include <string>
#include <string_view>

namespace orvan {

/// `text` as it compares when upper and lower case make no difference, in any script, nor the way its accents are
/// encoded, nor white space around it. Bytes that are not UTF-8 become U+FFFD.
std::string withoutCase(std::string_view text);

/// The same when accents make no difference either, nor the Latin letters that people without them on their keyboards
/// write in another way: "Jiří" and "jiri", "Łukasz" and "lukasz". Vowel signs and the like are letters and stay.
std::string withoutAccents(std::string_view text);

} // namespace orvan
