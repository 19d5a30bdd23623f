#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"

namespace orvan {

/// Finds the resumption of contact in a person's history: interactions that started again after a quiet period. A pure
/// computation without state; may be called from any thread.
class ChangedContextDetector {
 public:
  ChangedContextDetector() = delete;

  /// One interaction with the person and when it took place, as the store has it.
  class TimestampedInteraction {
   public:
    TimestampedInteraction(std::string interactionID, std::string occurredAt)
        : interactionID_(std::move(interactionID)), occurredAt_(std::move(occurredAt)) {}

    const std::string& interactionID() const noexcept { return interactionID_; }
    const std::string& occurredAt() const noexcept { return occurredAt_; }

    bool operator==(const TimestampedInteraction&) const = default;

   private:
    std::string interactionID_;
    std::string occurredAt_;
  };

  /// The latest resumption of contact, when it is recent at `asOf`.
  ///
  /// `sortedByOccurredAtAscending` is the whole history, oldest first; its order is trusted, and it may go on after
  /// `asOf`. Only the latest gap of at least `quietPeriodThresholdDays` counts: when contact resumed after it later
  /// than `asOf`, or more than `recentWindowDays` before, the result is absent and no earlier gap is tried. It is also
  /// absent when a single timestamp of the history cannot be read. A day is 86400 seconds.
  ///
  /// The result carries at most `maxResumedInteractionIDs` identifiers; that number must not be negative.
  static std::optional<ChangedContextEvidence> detectResumption(
      std::span<const TimestampedInteraction> sortedByOccurredAtAscending, Instant asOf,
      std::int64_t quietPeriodThresholdDays, std::int64_t recentWindowDays, std::int64_t maxResumedInteractionIDs);
};

} // namespace orvan
