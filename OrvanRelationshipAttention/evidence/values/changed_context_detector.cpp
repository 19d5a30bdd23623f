#include "OrvanRelationshipAttention/evidence/values/changed_context_detector.h"

#include <algorithm>
#include <chrono>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/precondition.h"

namespace orvan {
namespace {

using History = std::span<const ChangedContextDetector::TimestampedInteraction>;

/// Floating point: neither a threshold of any number of days nor the distance of any two instants overflows.
using Seconds = std::chrono::duration<double>;

Seconds secondsOfDays(std::int64_t days) noexcept {
  return Seconds{static_cast<double>(days) * 86400.0};
}

Seconds elapsed(Instant from, Instant to) noexcept {
  return Seconds{to.time_since_epoch()} - Seconds{from.time_since_epoch()};
}

struct Resumption {
  /// The first interaction after the gap.
  std::size_t position;
  Instant instant;
};

/// The end of the latest gap that reaches `threshold`; absent also when a timestamp anywhere cannot be read.
std::optional<Resumption> latestResumption(History history, Seconds threshold) noexcept {
  std::optional<Resumption> latest;
  std::optional<Instant> previous;
  for (std::size_t position = 0; position < history.size(); ++position) {
    const auto instant = parseInternetDateTime(history[position].occurredAt());
    if (!instant) {
      return std::nullopt;
    }
    if (previous && elapsed(*previous, *instant) >= threshold) {
      latest = Resumption{position, *instant};
    }
    previous = instant;
  }
  return latest;
}

std::vector<std::string> firstIDs(History interactions, std::int64_t limit) {
  precondition(limit >= 0, "maxResumedInteractionIDs must not be negative.");
  const auto count = std::min(interactions.size(), static_cast<std::size_t>(limit));
  std::vector<std::string> ids;
  ids.reserve(count);
  for (const auto& interaction : interactions.first(count)) {
    ids.push_back(interaction.interactionID());
  }
  return ids;
}

} // namespace

std::optional<ChangedContextEvidence> ChangedContextDetector::detectResumption(
    std::span<const TimestampedInteraction> sortedByOccurredAtAscending, Instant asOf,
    std::int64_t quietPeriodThresholdDays, std::int64_t recentWindowDays, std::int64_t maxResumedInteractionIDs) {
  const auto resumption = latestResumption(sortedByOccurredAtAscending, secondsOfDays(quietPeriodThresholdDays));
  if (!resumption || resumption->instant > asOf ||
      elapsed(resumption->instant, asOf) > secondsOfDays(recentWindowDays)) {
    return std::nullopt;
  }
  const auto resumed = sortedByOccurredAtAscending.subspan(resumption->position);
  return ChangedContextEvidence{quietPeriodThresholdDays,
                                sortedByOccurredAtAscending[resumption->position - 1].occurredAt(),
                                resumed.front().occurredAt(), firstIDs(resumed, maxResumedInteractionIDs),
                                static_cast<std::int64_t>(resumed.size())};
}

} // namespace orvan
