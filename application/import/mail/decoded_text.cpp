#include "application/import/mail/decoded_text.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "application/import/mail/characters.h"
#include "application/import/mail/header_fields.h"

namespace orvan {
namespace {

struct CloseConverter {
  void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

constexpr const char* windowsWestern = "windows-1252";

bool isAscii(std::string_view text) noexcept {
  return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

bool isUtf8(std::string_view text) noexcept {
  for (std::size_t position = 0; position < text.size();) {
    if (takeCharacter(text, position) < 0) {
      return false;
    }
  }
  return true;
}

bool separatesWords(UChar32 character) noexcept {
  if (character < 0x7F) {
    return character <= ' ';
  }
  return u_isUWhiteSpace(character) != 0 || u_charType(character) == U_CONTROL_CHAR;
}

std::string withCharactersReplaced(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    appendCharacter(valid, takeCharacter(text, position));
  }
  return valid;
}

std::string converted(std::string_view bytes, UConverter& converter) {
  // Three bytes hold any character that a charset has in one or two; what does not fit all the same is left out.
  std::string text(3 * bytes.size() + 16, '\0');
  UErrorCode status = U_ZERO_ERROR;
  const auto length = ucnv_toAlgorithmic(UCNV_UTF8, &converter, text.data(), static_cast<std::int32_t>(text.size()),
                                         bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
  text.resize(std::min(text.size(), static_cast<std::size_t>(std::max(length, 0))));
  return withCharactersReplaced(text);
}

/// Mail that says ISO 8859-1 or ASCII often holds the quotation marks and dashes of Windows-1252, which has the same
/// letters.
Converter converterFor(const std::string& charset) {
  const bool isWestern = equalIgnoringCase(charset, "iso-8859-1") || equalIgnoringCase(charset, "latin1");
  UErrorCode status = U_ZERO_ERROR;
  return Converter{ucnv_open(isWestern ? windowsWestern : charset.c_str(), &status)};
}

bool saysNothing(std::string_view charset) noexcept {
  return charset.empty() || equalIgnoringCase(charset, "us-ascii") || equalIgnoringCase(charset, "ascii");
}

bool isUtf8Name(std::string_view charset) noexcept {
  return equalIgnoringCase(charset, "utf-8") || equalIgnoringCase(charset, "utf8");
}

} // namespace

std::string utf8FromCharset(std::string_view bytes, std::string_view charset) {
  if (isUtf8Name(charset)) {
    return isUtf8(bytes) ? std::string{bytes} : withCharactersReplaced(bytes);
  }
  Converter converter = saysNothing(charset) ? nullptr : converterFor(std::string{charset});
  if (converter == nullptr) {
    if (isUtf8(bytes)) {
      return std::string{bytes};
    }
    converter = converterFor(windowsWestern);
  }
  return converter == nullptr ? withCharactersReplaced(bytes) : converted(bytes, *converter);
}

std::string onOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  bool blankIsDue = false;
  for (std::size_t position = 0; position < text.size();) {
    const auto character = takeCharacter(text, position);
    if (separatesWords(character)) {
      blankIsDue = !line.empty();
      continue;
    }
    if (blankIsDue) {
      line += ' ';
      blankIsDue = false;
    }
    appendCharacter(line, character);
  }
  return line;
}

std::string lowerCasedAscii(std::string_view text) {
  std::string lower{text};
  std::ranges::transform(lower, lower.begin(), [](char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  });
  return lower;
}

std::string lowerCased(std::string_view text) {
  if (isAscii(text)) {
    return lowerCasedAscii(text);
  }
  std::string lower;
  icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())})
      .toLower(icu::Locale::getRoot())
      .toUTF8String(lower);
  return lower;
}

} // namespace orvan
