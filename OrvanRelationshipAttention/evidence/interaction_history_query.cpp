#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan::internal {
namespace {

constexpr std::string_view historyUntilEligibility =
    R"sql(SELECT DISTINCT i.id AS interaction_id, i.occurred_at AS occurred_at
FROM identity_membership im
JOIN interaction_participant ip ON ip.source_identity_id = im.source_identity_id
JOIN interaction i ON i.id = ip.interaction_id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  AND im.canonical_person_id = ?
  AND )sql";

constexpr std::string_view historyUntilEnd = "\nORDER BY occurred_at ASC, i.id ASC";

} // namespace

std::vector<ChangedContextDetector::TimestampedInteraction> EvidenceQueries::fetchInteractionTimestamps(
    std::string_view personKey, Connection& connection) {
  std::string statement{historyUntilEligibility};
  statement += SourceEligibility::interactionPredicateSQL(SourceEligibility::Policy::showable, "i.id", "i.thread_id",
                                                          "i.source_event_id", "im.canonical_person_id", connection);
  statement += historyUntilEnd;

  std::vector<ChangedContextDetector::TimestampedInteraction> history;
  auto rows = connection.query(statement, personKey);
  const Column interactionIDColumn = rows.column("interaction_id");
  const Column occurredAtColumn = rows.column("occurred_at");
  while (rows.next()) {
    const auto interactionID = rows.optionalText(interactionIDColumn);
    const auto occurredAt = rows.optionalText(occurredAtColumn);
    if (interactionID && occurredAt) {
      history.emplace_back(std::string{*interactionID}, std::string{*occurredAt});
    }
  }
  return history;
}

} // namespace orvan::internal
