#include "application/session/nearest_words.h"

#include <algorithm>
#include <numeric>

namespace orvan {

std::size_t stepsBetween(std::string_view word, std::string_view known) {
  if (!word.empty() && known.starts_with(word)) {
    return 0;
  }
  std::vector<std::size_t> row(known.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : word) {
    std::size_t diagonal = row[0]++;
    for (std::size_t place = 0; place < known.size(); ++place) {
      const auto changed = diagonal + (known[place] == letter ? 0U : 1U);
      diagonal = row[place + 1];
      row[place + 1] = std::min({changed, diagonal + 1, row[place] + 1});
    }
  }
  return row.back();
}

std::vector<std::string> nearestWords(std::string_view word, const std::vector<std::string>& known) {
  constexpr std::size_t most = 3;
  std::vector<std::string> nearest;
  auto least = static_cast<std::size_t>(-1);
  for (const auto& candidate : known) {
    const auto steps = stepsBetween(word, candidate);
    if (steps < least) {
      nearest.clear();
      least = steps;
    }
    if (steps == least && nearest.size() < most && std::ranges::find(nearest, candidate) == nearest.end()) {
      nearest.push_back(candidate);
    }
  }
  return nearest;
}

} // namespace orvan
