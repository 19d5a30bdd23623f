#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvan {

/// A universally unique identifier.
class Uuid {
 public:
  explicit constexpr Uuid(std::array<std::uint8_t, 16> bytes) noexcept : bytes_(bytes) {}

  /// A new one, from the system's random numbers (version 4). Throws std::system_error when they cannot be had.
  static Uuid random();
  /// Reads the form 8-4-4-4-12 in hexadecimal digits of either case, and nothing around it.
  static std::optional<Uuid> parse(std::string_view text) noexcept;

  /// The form 8-4-4-4-12 in lowercase.
  std::string text() const;

  constexpr bool operator==(const Uuid&) const noexcept = default;

 private:
  std::array<std::uint8_t, 16> bytes_;
};

} // namespace orvan
