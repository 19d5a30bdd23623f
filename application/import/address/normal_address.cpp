#include "application/import/address/normal_address.h"

#include <unicode/idna.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "OrvanPlatform/white_space.h"

namespace orvan {
namespace {

bool isAscii(std::string_view text) noexcept {
  return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::string lowerCasedAscii(std::string_view text) {
  std::string lower{text};
  std::ranges::transform(lower, lower.begin(), [](char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
  });
  return lower;
}

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string utf8(const icu::UnicodeString& text) {
  std::string bytes;
  text.toUTF8String(bytes);
  return bytes;
}

std::string lowerCased(std::string_view text) {
  if (isAscii(text)) {
    return lowerCasedAscii(text);
  }
  UErrorCode status = U_ZERO_ERROR;
  const auto lower = unicode(text).toLower(icu::Locale::getRoot());
  const icu::Normalizer2* composer = icu::Normalizer2::getNFCInstance(status);
  return utf8(U_SUCCESS(status) ? composer->normalize(lower, status) : lower);
}

/// A domain that cannot be one is compared all the same: mail holds such.
std::string normalDomain(std::string_view domain) {
  if (isAscii(domain)) {
    return lowerCasedAscii(domain);
  }
  UErrorCode status = U_ZERO_ERROR;
  static const std::unique_ptr<icu::IDNA> names{icu::IDNA::createUTS46Instance(UIDNA_NONTRANSITIONAL_TO_ASCII, status)};
  icu::UnicodeString ascii;
  icu::IDNAInfo found;
  if (names != nullptr) {
    names->nameToASCII(unicode(domain), ascii, found, status);
  }
  return names == nullptr || U_FAILURE(status) || found.hasErrors() ? lowerCased(domain) : utf8(ascii);
}

std::string_view withoutScheme(std::string_view text) {
  constexpr std::string_view scheme = "mailto:";
  return lowerCasedAscii(text.substr(0, scheme.size())) == scheme ? text.substr(scheme.size()) : text;
}

/// Some programs put the whole address between apostrophes.
std::string_view withoutApostrophes(std::string_view text) noexcept {
  return text.size() > 2 && text.starts_with('\'') && text.ends_with('\'') ? text.substr(1, text.size() - 2) : text;
}

} // namespace

std::optional<std::string> normalAddress(std::string_view written) {
  const auto text = trimmed(withoutApostrophes(trimmed(withoutScheme(trimmed(written)))));
  const auto at = text.rfind('@');
  if (at == std::string_view::npos || at == 0 || at + 1 == text.size() ||
      text.find_first_of(" \t\r\n<>,;\"") != std::string_view::npos) {
    return std::nullopt;
  }
  return lowerCased(text.substr(0, at)) + '@' + normalDomain(text.substr(at + 1));
}

} // namespace orvan
