#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan::internal {
namespace {

constexpr std::string_view upcomingUntilEligibility =
    R"sql(SELECT DISTINCT i.id AS interaction_id, i.thread_id AS thread_id, i.source_event_id AS source_event_id,
       t.source_type AS source_type, i.occurred_at AS occurred_at
FROM identity_membership im
JOIN interaction_participant ip ON ip.source_identity_id = im.source_identity_id
JOIN interaction i ON i.id = ip.interaction_id
JOIN thread t ON t.id = i.thread_id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  AND im.canonical_person_id = ?
  AND i.kind = 'meeting'
  AND i.occurred_at > ? AND i.occurred_at <= ?
  AND )sql";

constexpr std::string_view upcomingUntilEnd = R"sql(
ORDER BY occurred_at ASC, i.id ASC
LIMIT ?)sql";

} // namespace

std::vector<UpcomingInteractionEvidence> EvidenceQueries::fetchUpcomingInteractions(std::string_view personKey,
                                                                                    Instant asOf,
                                                                                    Connection& connection) const {
  std::string statement{upcomingUntilEligibility};
  statement += SourceEligibility::interactionPredicateSQL(SourceEligibility::Policy::showable, "i.id", "i.thread_id",
                                                          "i.source_event_id", "im.canonical_person_id", connection);
  statement += upcomingUntilEnd;
  const auto after = formatInternetDateTime(asOf);
  const auto upTo = formatInternetDateTime(instantByAddingDays(asOf, options_.upcomingInteractionWindowDays()));

  std::vector<UpcomingInteractionEvidence> meetings;
  auto rows = connection.query(statement, personKey, after, upTo, options_.maxUpcomingInteractionsPerPerson());
  const Column interactionIDColumn = rows.column("interaction_id");
  const Column threadIDColumn = rows.column("thread_id");
  const Column sourceEventIDColumn = rows.column("source_event_id");
  const Column sourceTypeColumn = rows.column("source_type");
  const Column occurredAtColumn = rows.column("occurred_at");
  while (rows.next()) {
    const auto interactionID = rows.optionalText(interactionIDColumn);
    const auto threadID = rows.optionalText(threadIDColumn);
    const auto sourceEventID = rows.optionalText(sourceEventIDColumn);
    const auto sourceType = rows.optionalText(sourceTypeColumn);
    const auto occurredAt = rows.optionalText(occurredAtColumn);
    if (interactionID && threadID && sourceEventID && sourceType && occurredAt) {
      meetings.emplace_back(std::string{*interactionID}, std::string{*threadID}, std::string{*sourceEventID},
                            std::string{*sourceType}, std::string{*occurredAt});
    }
  }
  return meetings;
}

} // namespace orvan::internal
