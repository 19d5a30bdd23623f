#include "application/import/ledger/bounded_text.h"

#include <algorithm>

namespace orvan {
namespace {

constexpr bool beginsCharacter(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xc0U) != 0x80U;
}

} // namespace

std::string leadingCharacters(std::string text, std::size_t count) {
  if (text.size() <= count) {
    return text;
  }
  std::size_t characters = 0;
  const auto end =
      std::ranges::find_if(text, [&](char byte) { return beginsCharacter(byte) && characters++ == count; });
  if (end != text.end()) {
    text.erase(end, text.end());
    text.shrink_to_fit();
  }
  return text;
}

} // namespace orvan
