#include "OrvanPlatform/folded_text.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <array>
#include <cstdint>
#include <utility>

#include "OrvanPlatform/white_space.h"

namespace orvan {
namespace {

/// Letters that are no letter with an accent to Unicode.
constexpr std::array<std::pair<char16_t, const char16_t*>, 9> plainLetters{{
    {u'ø', u"o"},
    {u'ł', u"l"},
    {u'đ', u"d"},
    {u'ð', u"d"},
    {u'ħ', u"h"},
    {u'ı', u"i"},
    {u'þ', u"th"},
    {u'æ', u"ae"},
    {u'œ', u"oe"},
}};

icu::UnicodeString decomposed(std::string_view text) {
  const auto trimmedText = trimmed(text);
  auto folded =
      icu::UnicodeString::fromUTF8({trimmedText.data(), static_cast<std::int32_t>(trimmedText.size())}).foldCase();
  UErrorCode status = U_ZERO_ERROR;
  const auto* const form = icu::Normalizer2::getNFDInstance(status);
  auto result = U_SUCCESS(status) != 0 ? form->normalize(folded, status) : folded;
  return U_SUCCESS(status) != 0 ? result : folded;
}

/// Accents belong to no script; the signs of scripts that write vowels above and below belong to theirs.
bool isAccent(UChar32 character) {
  UErrorCode status = U_ZERO_ERROR;
  return u_charType(character) == U_NON_SPACING_MARK && uscript_getScript(character, &status) == USCRIPT_INHERITED;
}

std::string utf8(const icu::UnicodeString& text) {
  std::string encoded;
  text.toUTF8String(encoded);
  return encoded;
}

} // namespace

std::string withoutCase(std::string_view text) {
  return utf8(decomposed(text));
}

std::string withoutAccents(std::string_view text) {
  const auto whole = decomposed(text);
  icu::UnicodeString plain;
  for (std::int32_t at = 0; at < whole.length(); at = whole.moveIndex32(at, 1)) {
    if (const auto character = whole.char32At(at); !isAccent(character)) {
      plain.append(character);
    }
  }
  for (const auto& [letter, letters] : plainLetters) {
    plain.findAndReplace(icu::UnicodeString{letter}, icu::UnicodeString{letters});
  }
  return utf8(plain);
}

} // namespace orvan
