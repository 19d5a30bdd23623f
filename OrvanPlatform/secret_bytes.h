#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace orvan {

/// Bytes that must not outlive their use. The memory is overwritten with zeros when the object is destroyed or assigned
/// to, by a call that the compiler does not drop. Movable, never copied.
class SecretBytes {
 public:
  SecretBytes() = default;
  /// A buffer of `size` zero bytes, to be filled in place.
  explicit SecretBytes(std::size_t size);
  /// A copy of `bytes`; the caller clears the original.
  explicit SecretBytes(std::span<const unsigned char> bytes);
  ~SecretBytes();

  SecretBytes(SecretBytes&& other) noexcept;
  SecretBytes& operator=(SecretBytes&& other) noexcept;
  SecretBytes(const SecretBytes&) = delete;
  SecretBytes& operator=(const SecretBytes&) = delete;

  std::size_t size() const noexcept { return bytes_.size(); }
  std::span<unsigned char> bytes() noexcept { return bytes_; }
  std::span<const unsigned char> bytes() const noexcept { return bytes_; }

  /// Overwrites every byte with zero. The size stays.
  void zero() noexcept;

 private:
  std::vector<unsigned char> bytes_;
};

} // namespace orvan
