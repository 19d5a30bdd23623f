#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan::internal {
namespace {

constexpr std::string_view commitmentsUntilEligibility = R"sql(SELECT ol.id, ol.kind, ol.evidence_ref, ol.detected_at
FROM open_loop ol
JOIN claim_evidence ce ON ce.id = ol.evidence_ref
JOIN claim c ON c.id = ce.claim_id AND c.person_id = ol.person_id
WHERE ol.person_id = ? AND ol.state IN ('open', 'surfaced')
  AND )sql";

/// Evidence names a source event and no thread; the thread is that of the event's first interaction.
constexpr std::string_view threadOfEvidence =
    "(SELECT ci.thread_id FROM interaction ci WHERE ci.source_event_id = ce.source_event_id ORDER BY ci.id ASC LIMIT "
    "1)";

constexpr std::string_view commitmentsUntilEnd = "\nORDER BY ol.detected_at DESC, ol.id ASC\nLIMIT ?";

} // namespace

std::vector<CommitmentEvidence> EvidenceQueries::fetchCommitments(std::string_view personKey,
                                                                  Connection& connection) const {
  std::string statement{commitmentsUntilEligibility};
  statement += SourceEligibility::interactionPredicateSQL(
      SourceEligibility::Policy::showable, "ce.id", threadOfEvidence, "ce.source_event_id", "ol.person_id", connection);
  statement += commitmentsUntilEnd;

  std::vector<CommitmentEvidence> commitments;
  auto rows = connection.query(statement, personKey, options_.maxCommitmentsPerPerson());
  const Column idColumn = rows.column("id");
  const Column kindColumn = rows.column("kind");
  const Column evidenceRefColumn = rows.column("evidence_ref");
  const Column detectedAtColumn = rows.column("detected_at");
  while (rows.next()) {
    const auto id = rows.optionalText(idColumn);
    const auto kind = rows.optionalText(kindColumn);
    const auto evidenceRef = rows.optionalText(evidenceRefColumn);
    const auto detectedAt = rows.optionalText(detectedAtColumn);
    if (id && kind && evidenceRef && detectedAt) {
      commitments.emplace_back(std::string{*id}, std::string{*kind}, std::string{*detectedAt},
                               std::string{*evidenceRef});
    }
  }
  return commitments;
}

} // namespace orvan::internal
