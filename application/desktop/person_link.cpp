#include "application/desktop/person_link.h"

#include <algorithm>

namespace orvan {
namespace {

constexpr std::string_view beginning = "orvan://person/";
constexpr std::string_view keyBeginning = "p-";
constexpr std::size_t longestKey = 64;

bool mayBeInKey(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '-';
}

} // namespace

std::optional<std::string> personKeyIn(std::string_view link) {
  if (!link.starts_with(beginning)) {
    return std::nullopt;
  }
  auto key = link.substr(beginning.size());
  if (key.ends_with('/')) {
    key.remove_suffix(1);
  }
  const bool isKey = key.starts_with(keyBeginning) && key.size() > keyBeginning.size() && key.size() <= longestKey &&
                     std::ranges::all_of(key, mayBeInKey);
  return isKey ? std::optional{std::string{key}} : std::nullopt;
}

} // namespace orvan
