#include "application/follow_ups/notification_application.h"

#include <openssl/sha.h>

#include <array>

namespace orvan {
namespace {

constexpr std::string_view prefix = "org.orvan.Orvan.";
constexpr std::size_t digestBytes = 6;

std::string hexadecimal(unsigned char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  return {digits[byte >> 4U], digits[byte & 0xFU]};
}

} // namespace

std::string notificationApplicationOf(const std::filesystem::path& file) {
  const auto place = std::filesystem::weakly_canonical(std::filesystem::absolute(file)).native();
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
  // The path's bytes, which SHA256 reads as unsigned.
  SHA256(reinterpret_cast<const unsigned char*>(place.data()), place.size(), digest.data());
  std::string id{prefix};
  for (std::size_t byte = 0; byte < digestBytes; ++byte) {
    id += hexadecimal(digest.at(byte));
  }
  return id;
}

} // namespace orvan
