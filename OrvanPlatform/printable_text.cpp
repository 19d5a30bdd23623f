#include "OrvanPlatform/printable_text.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstdint>

namespace orvan {
namespace {

bool isObeyed(UChar32 character) noexcept {
  switch (u_charType(character)) {
    case U_CONTROL_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
      return true;
    default:
      return u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL) != 0;
  }
}

} // namespace

std::string printableText(std::string_view text) {
  auto characters = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  // All that is replaced lies in the first plane, so one unit stands for one character.
  for (std::int32_t at = 0; at < characters.length(); ++at) {
    if (isObeyed(characters.charAt(at))) {
      characters.setCharAt(at, u' ');
    }
  }
  std::string printable;
  characters.toUTF8String(printable);
  return printable;
}

} // namespace orvan
