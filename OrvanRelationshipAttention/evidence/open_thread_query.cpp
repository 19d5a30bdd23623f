#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan::internal {
namespace {

constexpr std::string_view threadsUntilLatestCondition =
    R"sql(SELECT DISTINCT t.id AS thread_id, t.source_type AS source_type,
       latest.id AS interaction_id, latest.source_event_id AS source_event_id,
       latest.occurred_at AS occurred_at
FROM identity_membership im
JOIN thread_participant tp ON tp.source_identity_id = im.source_identity_id
JOIN thread t ON t.id = tp.thread_id
JOIN interaction latest ON latest.thread_id = t.id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  AND im.canonical_person_id = ?
  AND latest.direction = 'inbound'
  AND latest.source_identity_id = im.source_identity_id
  AND )sql";

constexpr std::string_view threadsUntilLaterCondition = R"sql(
  AND NOT EXISTS (
    SELECT 1 FROM source_event se
    WHERE se.id = latest.source_event_id AND se.conversation_kind = 'group'
  )
  AND NOT EXISTS (
    SELECT 1 FROM interaction later
    WHERE later.thread_id = t.id
      AND )sql";

constexpr std::string_view threadsUntilEnd = R"sql(
      AND later.occurred_at > latest.occurred_at
  )
ORDER BY occurred_at DESC, latest.id ASC
LIMIT ?)sql";

} // namespace

std::vector<OpenThreadEvidence> EvidenceQueries::fetchOpenThreads(std::string_view personKey, Instant asOf,
                                                                  Connection& connection) const {
  const auto eligible =
      SourceEligibility::interactionPredicateSQL(SourceEligibility::Policy::showable, "latest.id", "latest.thread_id",
                                                 "latest.source_event_id", "im.canonical_person_id", connection);
  const auto latestByNow = SourceEligibility::occurredAtAsOfPredicate(asOf, "latest.occurred_at");
  const auto laterByNow = SourceEligibility::occurredAtAsOfPredicate(asOf, "later.occurred_at");

  std::string statement{threadsUntilLatestCondition};
  statement += latestByNow.sql;
  statement += "\n  AND ";
  statement += eligible;
  statement += threadsUntilLaterCondition;
  statement += laterByNow.sql;
  statement += threadsUntilEnd;

  std::vector<OpenThreadEvidence> threads;
  auto rows = connection.query(statement, personKey, latestByNow.argument, laterByNow.argument,
                               options_.maxOpenThreadsPerPerson());
  const Column threadIDColumn = rows.column("thread_id");
  const Column sourceTypeColumn = rows.column("source_type");
  const Column interactionIDColumn = rows.column("interaction_id");
  const Column sourceEventIDColumn = rows.column("source_event_id");
  const Column occurredAtColumn = rows.column("occurred_at");
  while (rows.next()) {
    const auto threadID = rows.optionalText(threadIDColumn);
    const auto sourceType = rows.optionalText(sourceTypeColumn);
    const auto interactionID = rows.optionalText(interactionIDColumn);
    const auto sourceEventID = rows.optionalText(sourceEventIDColumn);
    const auto occurredAt = rows.optionalText(occurredAtColumn);
    if (threadID && sourceType && interactionID && sourceEventID && occurredAt) {
      threads.emplace_back(std::string{*threadID}, std::string{*sourceType}, std::string{*interactionID},
                           std::string{*sourceEventID}, std::string{*occurredAt});
    }
  }
  return threads;
}

} // namespace orvan::internal
