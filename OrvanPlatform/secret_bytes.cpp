#include "OrvanPlatform/secret_bytes.h"

#include <openssl/crypto.h>

#include <utility>

namespace orvan {

SecretBytes::SecretBytes(std::size_t size) : bytes_(size) {}

SecretBytes::SecretBytes(std::span<const unsigned char> bytes) : bytes_(bytes.begin(), bytes.end()) {}

SecretBytes::~SecretBytes() {
  zero();
}

SecretBytes::SecretBytes(SecretBytes&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}

SecretBytes& SecretBytes::operator=(SecretBytes&& other) noexcept {
  if (this != &other) {
    zero();
    bytes_ = std::exchange(other.bytes_, {});
  }
  return *this;
}

void SecretBytes::zero() noexcept {
  OPENSSL_cleanse(bytes_.data(), bytes_.size());
}

} // namespace orvan
