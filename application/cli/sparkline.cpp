#include "application/cli/sparkline.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <string_view>

namespace orvan {
namespace {

constexpr std::array<std::string_view, 9> blocks{"·", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};

std::string_view blockFor(std::int64_t count, std::int64_t most) {
  constexpr std::int64_t heights = blocks.size() - 1;
  if (count <= 0 || most <= 0) {
    return blocks.front();
  }
  return blocks.at(static_cast<std::size_t>((std::min(count, most) * heights + most - 1) / most));
}

char digitFor(std::int64_t count) {
  constexpr std::int64_t greatest = 9;
  return count <= 0 ? '.' : static_cast<char>('0' + std::min(count, greatest));
}

/// The first that is set decides.
std::string_view characterLocale() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment of this program.
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return {};
}

} // namespace

SparklineStyle sparklineStyleOfLocale() {
  std::string letters;
  for (const char letter : characterLocale()) {
    if (std::isalnum(static_cast<unsigned char>(letter)) != 0) {
      letters += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
  }
  return letters.contains("utf8") ? SparklineStyle::blocks : SparklineStyle::digits;
}

std::vector<std::int64_t> summedUp(std::span<const std::int64_t> counts, std::size_t together) {
  std::vector<std::int64_t> sums((counts.size() + together - 1) / together);
  for (std::size_t fromEnd = 0; fromEnd < counts.size(); ++fromEnd) {
    sums[sums.size() - 1 - fromEnd / together] += counts[counts.size() - 1 - fromEnd];
  }
  return sums;
}

std::string sparkline(std::span<const std::int64_t> counts, std::int64_t most, SparklineStyle style) {
  std::string line;
  for (const auto count : counts) {
    if (style == SparklineStyle::blocks) {
      line += blockFor(count, most);
    } else {
      line += digitFor(count);
    }
  }
  return line;
}

} // namespace orvan
