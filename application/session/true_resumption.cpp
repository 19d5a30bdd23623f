#include "application/session/true_resumption.h"

#include <optional>
#include <string>
#include <vector>

#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "OrvanRelationshipAttention/evidence/values/changed_context_detector.h"

namespace orvan {
namespace {

using TimestampedInteraction = ChangedContextDetector::TimestampedInteraction;

/// The latest mail of the person's before `resumedAt` that is kept by itself from being shown.
std::optional<TimestampedInteraction> latestHiddenBefore(const std::string& resumedAt, const std::string& personKey,
                                                         Connection& connection) {
  auto rows = connection.query(R"sql(
SELECT hidden.id, hidden.occurred_at
FROM exclusion_rule rule
JOIN interaction hidden ON hidden.id = rule.target_id AND hidden.occurred_at < ?2
WHERE rule.scope = 'interaction' AND rule.ended_at IS NULL
  AND EXISTS (
    SELECT 1
    FROM identity_membership im
    JOIN interaction_participant present
      ON present.source_identity_id = im.source_identity_id AND present.interaction_id = hidden.id
    WHERE im.canonical_person_id = ?1 AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed'))
ORDER BY hidden.occurred_at DESC
LIMIT 1
)sql",
                               personKey, resumedAt);
  if (!rows.next()) {
    return std::nullopt;
  }
  return TimestampedInteraction{std::string{rows.text(Column{0})}, std::string{rows.text(Column{1})}};
}

/// What is left of the resumption when there was contact shortly before it; nothing when it was none.
std::optional<ChangedContextEvidence> resumptionAfter(const TimestampedInteraction& hidden,
                                                      const ChangedContextEvidence& resumption, Instant asOf) {
  const auto& options = AttentionEvidenceCompilerOptions::defaults;
  const std::vector around{hidden, TimestampedInteraction{"", resumption.resumedAt()}};
  const auto silence = ChangedContextDetector::detectResumption(around, asOf, options.quietPeriodThresholdDays(),
                                                                options.recentWindowDays(), 0);
  if (!silence) {
    return std::nullopt;
  }
  return ChangedContextEvidence{resumption.quietPeriodDays(), hidden.occurredAt(), resumption.resumedAt(),
                                resumption.resumedInteractionIDs(), resumption.resumedInteractionCount()};
}

} // namespace

AttentionEvidenceBundle withTrueResumption(AttentionEvidenceBundle bundle, Instant asOf, Connection& connection) {
  const auto& told = bundle.changedContext();
  const auto hidden = told ? latestHiddenBefore(told->resumedAt(), bundle.personKey(), connection) : std::nullopt;
  if (!hidden || hidden->occurredAt() <= told->quietSinceAt()) {
    return bundle;
  }
  return {bundle.personKey(),
          bundle.generatedAt(),
          bundle.windowDays(),
          bundle.openThreads(),
          bundle.upcomingInteractions(),
          resumptionAfter(*hidden, *told, asOf),
          bundle.commitments(),
          bundle.sourceFreshness(),
          bundle.lastUserCorrectionAt(),
          bundle.userCorrectionCountInWindow()};
}

} // namespace orvan
