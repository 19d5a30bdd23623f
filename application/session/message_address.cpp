#include "application/session/message_address.h"

namespace orvan {
namespace {

/// Everything else may stand there percent-encoded, even where it need not be.
bool standsForItself(char character) {
  constexpr std::string_view others = "-._~@";
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || others.contains(character);
}

} // namespace

std::string messageAddressOf(std::string_view messageID) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string address = "mid:";
  for (const char character : messageID) {
    if (standsForItself(character)) {
      address += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      address += {'%', digits[byte / 16U], digits[byte % 16U]};
    }
  }
  return address;
}

} // namespace orvan
