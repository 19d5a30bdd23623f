#include "OrvanPlatform/instant.h"

#include <algorithm>
#include <limits>

namespace orvan {

Instant instantByAddingDays(Instant instant, std::int64_t days) noexcept {
  using Days = std::chrono::duration<std::int64_t, std::ratio<86400>>;
  // More days than lie between the two ends cannot change the outcome, and fit the multiplication.
  constexpr std::int64_t allDays = std::chrono::duration_cast<Days>(latestInstant - earliestInstant).count() + 1;
  const Days bounded{std::clamp(days, -allDays, allDays)};
  const Instant start = std::clamp(instant, earliestInstant, latestInstant);
  return std::clamp(start + bounded, earliestInstant, latestInstant);
}

Instant instantBySubtractingDays(Instant instant, std::int64_t days) noexcept {
  // The smallest number has no opposite, and its neighbour's reaches past the end just as well.
  return instantByAddingDays(instant, -std::max(days, -std::numeric_limits<std::int64_t>::max()));
}

} // namespace orvan
