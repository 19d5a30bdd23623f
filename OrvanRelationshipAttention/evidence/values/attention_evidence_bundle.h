#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvan {

/// What the library knows about one person at one moment, as values. Every text is what the store holds, unchanged:
/// identifiers are row ids, and timestamps are compared as text and never reformatted. A const object may be read from
/// any thread; references that a field returns live as long as the object.

/// A thread whose latest message came in from the person and still waits for an answer.
class OpenThreadEvidence {
 public:
  OpenThreadEvidence(std::string threadID, std::string sourceType, std::string lastInboundInteractionID,
                     std::string lastInboundSourceEventID, std::string lastInboundOccurredAt)
      : threadID_(std::move(threadID)),
        sourceType_(std::move(sourceType)),
        lastInboundInteractionID_(std::move(lastInboundInteractionID)),
        lastInboundSourceEventID_(std::move(lastInboundSourceEventID)),
        lastInboundOccurredAt_(std::move(lastInboundOccurredAt)) {}

  const std::string& threadID() const noexcept { return threadID_; }
  const std::string& sourceType() const noexcept { return sourceType_; }
  const std::string& lastInboundInteractionID() const noexcept { return lastInboundInteractionID_; }
  const std::string& lastInboundSourceEventID() const noexcept { return lastInboundSourceEventID_; }
  const std::string& lastInboundOccurredAt() const noexcept { return lastInboundOccurredAt_; }

  bool operator==(const OpenThreadEvidence&) const = default;

 private:
  std::string threadID_;
  std::string sourceType_;
  std::string lastInboundInteractionID_;
  std::string lastInboundSourceEventID_;
  std::string lastInboundOccurredAt_;
};

/// A meeting with the person in the coming window.
class UpcomingInteractionEvidence {
 public:
  UpcomingInteractionEvidence(std::string interactionID, std::string threadID, std::string sourceEventID,
                              std::string sourceType, std::string occurredAt)
      : interactionID_(std::move(interactionID)),
        threadID_(std::move(threadID)),
        sourceEventID_(std::move(sourceEventID)),
        sourceType_(std::move(sourceType)),
        occurredAt_(std::move(occurredAt)) {}

  const std::string& interactionID() const noexcept { return interactionID_; }
  const std::string& threadID() const noexcept { return threadID_; }
  const std::string& sourceEventID() const noexcept { return sourceEventID_; }
  /// The source type of the meeting's thread.
  const std::string& sourceType() const noexcept { return sourceType_; }
  /// When the meeting takes place: after the moment the bundle was compiled for.
  const std::string& occurredAt() const noexcept { return occurredAt_; }

  bool operator==(const UpcomingInteractionEvidence&) const = default;

 private:
  std::string interactionID_;
  std::string threadID_;
  std::string sourceEventID_;
  std::string sourceType_;
  std::string occurredAt_;
};

/// Contact that resumed after a quiet period.
class ChangedContextEvidence {
 public:
  ChangedContextEvidence(std::int64_t quietPeriodDays, std::string quietSinceAt, std::string resumedAt,
                         std::vector<std::string> resumedInteractionIDs, std::int64_t resumedInteractionCount)
      : quietPeriodDays_(quietPeriodDays),
        quietSinceAt_(std::move(quietSinceAt)),
        resumedAt_(std::move(resumedAt)),
        resumedInteractionIDs_(std::move(resumedInteractionIDs)),
        resumedInteractionCount_(resumedInteractionCount) {}

  /// The threshold in days that was applied, not the measured length of the gap.
  std::int64_t quietPeriodDays() const noexcept { return quietPeriodDays_; }
  /// When the last interaction before the gap took place.
  const std::string& quietSinceAt() const noexcept { return quietSinceAt_; }
  /// When the first interaction after the gap took place.
  const std::string& resumedAt() const noexcept { return resumedAt_; }
  /// The interactions from the resumption on, oldest first, cut to the options' maximum.
  const std::vector<std::string>& resumedInteractionIDs() const noexcept { return resumedInteractionIDs_; }
  /// How many interactions there are from the resumption on, before any cut.
  std::int64_t resumedInteractionCount() const noexcept { return resumedInteractionCount_; }

  bool operator==(const ChangedContextEvidence&) const = default;

 private:
  std::int64_t quietPeriodDays_;
  std::string quietSinceAt_;
  std::string resumedAt_;
  std::vector<std::string> resumedInteractionIDs_;
  std::int64_t resumedInteractionCount_;
};

/// An open loop with the person: a question, promise or follow-up that is still open.
class CommitmentEvidence {
 public:
  CommitmentEvidence(std::string openLoopID, std::string kind, std::string detectedAt,
                     std::optional<std::string> evidenceRef)
      : openLoopID_(std::move(openLoopID)),
        kind_(std::move(kind)),
        detectedAt_(std::move(detectedAt)),
        evidenceRef_(std::move(evidenceRef)) {}

  const std::string& openLoopID() const noexcept { return openLoopID_; }
  const std::string& kind() const noexcept { return kind_; }
  const std::string& detectedAt() const noexcept { return detectedAt_; }
  /// The claim evidence behind the open loop.
  const std::optional<std::string>& evidenceRef() const noexcept { return evidenceRef_; }

  bool operator==(const CommitmentEvidence&) const = default;

 private:
  std::string openLoopID_;
  std::string kind_;
  std::string detectedAt_;
  std::optional<std::string> evidenceRef_;
};

/// How fresh one operation of one source account is.
class SourceFreshnessEvidence {
 public:
  SourceFreshnessEvidence(std::string sourceAccountID, std::string operation, std::string freshnessState,
                          std::optional<std::string> lastSuccessfulSyncAt)
      : sourceAccountID_(std::move(sourceAccountID)),
        operation_(std::move(operation)),
        freshnessState_(std::move(freshnessState)),
        lastSuccessfulSyncAt_(std::move(lastSuccessfulSyncAt)) {}

  const std::string& sourceAccountID() const noexcept { return sourceAccountID_; }
  const std::string& operation() const noexcept { return operation_; }
  /// "current", "stale" or "unknown".
  const std::string& freshnessState() const noexcept { return freshnessState_; }
  /// Absent when the operation never succeeded.
  const std::optional<std::string>& lastSuccessfulSyncAt() const noexcept { return lastSuccessfulSyncAt_; }

  bool operator==(const SourceFreshnessEvidence&) const = default;

 private:
  std::string sourceAccountID_;
  std::string operation_;
  std::string freshnessState_;
  std::optional<std::string> lastSuccessfulSyncAt_;
};

/// Everything that bears on getting back in touch with one person.
class AttentionEvidenceBundle {
 public:
  AttentionEvidenceBundle(std::string personKey, std::string generatedAt, std::int64_t windowDays,
                          std::vector<OpenThreadEvidence> openThreads,
                          std::vector<UpcomingInteractionEvidence> upcomingInteractions,
                          std::optional<ChangedContextEvidence> changedContext,
                          std::vector<CommitmentEvidence> commitments,
                          std::vector<SourceFreshnessEvidence> sourceFreshness,
                          std::optional<std::string> lastUserCorrectionAt, std::int64_t userCorrectionCountInWindow)
      : personKey_(std::move(personKey)),
        generatedAt_(std::move(generatedAt)),
        windowDays_(windowDays),
        openThreads_(std::move(openThreads)),
        upcomingInteractions_(std::move(upcomingInteractions)),
        changedContext_(std::move(changedContext)),
        commitments_(std::move(commitments)),
        sourceFreshness_(std::move(sourceFreshness)),
        lastUserCorrectionAt_(std::move(lastUserCorrectionAt)),
        userCorrectionCountInWindow_(userCorrectionCountInWindow) {}

  const std::string& personKey() const noexcept { return personKey_; }
  /// The moment the bundle was compiled for: UTC, whole seconds, "2026-03-05T14:07:09Z".
  const std::string& generatedAt() const noexcept { return generatedAt_; }
  /// The recent window in days that applied.
  std::int64_t windowDays() const noexcept { return windowDays_; }
  /// Most recent first.
  const std::vector<OpenThreadEvidence>& openThreads() const noexcept { return openThreads_; }
  /// Soonest first.
  const std::vector<UpcomingInteractionEvidence>& upcomingInteractions() const noexcept {
    return upcomingInteractions_;
  }
  /// Present when contact resumed within the recent window after a quiet period.
  const std::optional<ChangedContextEvidence>& changedContext() const noexcept { return changedContext_; }
  /// Most recently detected first.
  const std::vector<CommitmentEvidence>& commitments() const noexcept { return commitments_; }
  /// One entry for each operation of the accounts the person is seen in, by account and then operation.
  const std::vector<SourceFreshnessEvidence>& sourceFreshness() const noexcept { return sourceFreshness_; }
  /// When the user last corrected something that concerns the person; absent when that never happened.
  const std::optional<std::string>& lastUserCorrectionAt() const noexcept { return lastUserCorrectionAt_; }
  /// How many of those corrections lie in the recent window.
  std::int64_t userCorrectionCountInWindow() const noexcept { return userCorrectionCountInWindow_; }

  /// Whether nothing here concerns the person: no thread, meeting, changed context or commitment, and no correction
  /// ever. Source freshness and the correction count do not matter.
  bool isEmpty() const noexcept {
    return openThreads_.empty() && upcomingInteractions_.empty() && !changedContext_ && commitments_.empty() &&
           !lastUserCorrectionAt_;
  }

  bool operator==(const AttentionEvidenceBundle&) const = default;

 private:
  std::string personKey_;
  std::string generatedAt_;
  std::int64_t windowDays_;
  std::vector<OpenThreadEvidence> openThreads_;
  std::vector<UpcomingInteractionEvidence> upcomingInteractions_;
  std::optional<ChangedContextEvidence> changedContext_;
  std::vector<CommitmentEvidence> commitments_;
  std::vector<SourceFreshnessEvidence> sourceFreshness_;
  std::optional<std::string> lastUserCorrectionAt_;
  std::int64_t userCorrectionCountInWindow_;
};

} // namespace orvan
