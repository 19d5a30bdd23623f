#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"

#include <openssl/evp.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan::internal {
namespace {

constexpr std::string_view version25Prefix = "fu-v25:";
constexpr std::string_view openLoopPrefix = "open-loop:follow-up:";

void appendWithLength(std::string& text, std::string_view piece) {
  text.append(std::to_string(piece.size())).append(":").append(piece);
}

/// A base-10 integer with or without a sign, and nothing else.
std::optional<std::int64_t> integerOf(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  std::int64_t value = 0;
  const std::span<const char> digits{text};
  const char* const end = std::to_address(digits.end());
  const auto [stop, error] = std::from_chars(std::to_address(digits.begin()), end, value);
  return error == std::errc{} && stop == end ? std::optional{value} : std::nullopt;
}

/// Whether `piece` is a length, ":" and that many bytes.
bool isLengthPrefixed(std::string_view piece) {
  const auto colon = piece.find(':');
  if (colon == std::string_view::npos) {
    return false;
  }
  const auto length = integerOf(piece.substr(0, colon));
  return length.has_value() && std::cmp_equal(*length, piece.size() - colon - 1);
}

} // namespace

std::string followUpKey(std::string_view sourceObjectID, std::string_view personID) {
  constexpr std::size_t lengthsAndMarks = 24;
  std::string key;
  key.reserve(sourceObjectID.size() + personID.size() + lengthsAndMarks);
  appendWithLength(key, sourceObjectID);
  key += '|';
  appendWithLength(key, personID);
  return key;
}

std::string followUpOpenLoopID(std::string_view followUpID) {
  return std::string{openLoopPrefix}.append(followUpID);
}

std::string followUpOpenLoopID(std::string_view sourceObjectID, std::string_view personID) {
  return followUpOpenLoopID(followUpKey(sourceObjectID, personID));
}

std::optional<FollowUpPair> pairOfFollowUpKey(std::string_view key) {
  const auto length = integerOf(key.substr(0, key.find(':')));
  const auto start = key.find(':') + 1;
  if (start == 0 || !length.has_value() || *length < 0 || std::cmp_greater(*length, key.size() - start)) {
    return std::nullopt;
  }
  const auto sourceObjectID = key.substr(start, static_cast<std::size_t>(*length));
  const auto colon = key.find(':', start + sourceObjectID.size());
  if (colon == std::string_view::npos) {
    return std::nullopt;
  }
  const auto personID = key.substr(colon + 1);
  // Lengths can be written in several ways, and the bar may be missing: what counts is the key of the two.
  if (followUpKey(sourceObjectID, personID) != key) {
    return std::nullopt;
  }
  return FollowUpPair{.sourceObjectID = std::string{sourceObjectID}, .personID = std::string{personID}};
}

bool hasVersion25Form(std::string_view followUpID) {
  return followUpID.starts_with(version25Prefix);
}

bool isLegacyFollowUpKey(std::string_view identifier) {
  if (hasVersion25Form(identifier)) {
    return true;
  }
  const auto bar = identifier.find('|');
  if (bar == std::string_view::npos || identifier.find('|', bar + 1) != std::string_view::npos) {
    return false;
  }
  return isLengthPrefixed(identifier.substr(0, bar)) && isLengthPrefixed(identifier.substr(bar + 1));
}

std::string followUpKeyHash(std::string_view key) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  if (EVP_Digest(key.data(), key.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1) {
    throw std::runtime_error("SHA-256 is not available");
  }
  constexpr std::size_t bytesShown = 6;
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (std::size_t index = 0; index < bytesShown; ++index) {
    text += digits[digest.at(index) >> 4U];
    text += digits[digest.at(index) & 0xFU];
  }
  return text;
}

std::string iso8601Minute(Instant instant) {
  constexpr std::size_t lengthToMinute = std::string_view("2026-03-05T14:07").size();
  return formatInternetDateTime(instant).substr(0, lengthToMinute) + "Z";
}

} // namespace orvan::internal
