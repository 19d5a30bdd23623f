#include "OrvanPlatform/uuid.h"

#include <sys/random.h>

#include <cerrno>
#include <system_error>

namespace orvan {
namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenAt(std::size_t position) noexcept {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

/// The value of a hexadecimal digit, or nothing.
constexpr std::optional<unsigned> digitValue(char digit) noexcept {
  constexpr unsigned ten = 10;
  if (digit >= '0' && digit <= '9') {
    return static_cast<unsigned>(digit - '0');
  }
  if (digit >= 'a' && digit <= 'f') {
    return ten + static_cast<unsigned>(digit - 'a');
  }
  if (digit >= 'A' && digit <= 'F') {
    return ten + static_cast<unsigned>(digit - 'A');
  }
  return std::nullopt;
}

} // namespace

Uuid Uuid::random() {
  std::array<std::uint8_t, 16> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "drawing random bytes");
  }
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
  return Uuid{bytes};
}

std::optional<Uuid> Uuid::parse(std::string_view text) noexcept {
  if (text.size() != textLength) {
    return std::nullopt;
  }
  std::array<std::uint8_t, 16> bytes{};
  std::size_t digits = 0;
  for (std::size_t position = 0; position < textLength; ++position) {
    if (isHyphenAt(position)) {
      if (text[position] != '-') {
        return std::nullopt;
      }
      continue;
    }
    const auto value = digitValue(text[position]);
    if (!value.has_value()) {
      return std::nullopt;
    }
    std::uint8_t& byte = bytes[digits / 2];
    byte = static_cast<std::uint8_t>((static_cast<unsigned>(byte) << 4U) | *value);
    ++digits;
  }
  return Uuid{bytes};
}

std::string Uuid::text() const {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  text.reserve(textLength);
  for (const std::uint8_t byte : bytes_) {
    if (isHyphenAt(text.size())) {
      text += '-';
    }
    text += digits[byte >> 4U];
    text += digits[byte & 0x0FU];
  }
  return text;
}

} // namespace orvan
