#include "application/import/ledger/waiting_threads.h"

#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

/// Of several latest ones at the same second any serves: a list looks at the person's evidence itself.
constexpr const char* selectLatest = R"sql(
SELECT latest.id, latest.source_identity_id, latest.occurred_at
FROM (
  SELECT id, source_identity_id, occurred_at, direction, source_event_id
  FROM interaction
  WHERE thread_id = ?1
  ORDER BY occurred_at DESC
  LIMIT 1
) latest
JOIN source_event event ON event.id = latest.source_event_id AND event.conversation_kind = 'direct'
WHERE latest.direction = 'inbound' AND latest.source_identity_id IS NOT NULL
  AND NOT EXISTS (
    SELECT 1 FROM exclusion_rule settled
    WHERE settled.scope = 'interaction' AND settled.target_id = latest.id AND settled.ended_at IS NULL)
)sql";

constexpr const char* upsertWaiting = R"sql(
INSERT INTO waiting_thread (thread_id, source_identity_id, since)
VALUES (?, ?, ?)
ON CONFLICT DO UPDATE SET source_identity_id = excluded.source_identity_id, since = excluded.since
WHERE (source_identity_id, since) <> (excluded.source_identity_id, excluded.since)
)sql";

} // namespace

std::vector<WaitingMail> refreshWaitingThreads(std::span<const std::string> threadIDs, Connection& connection) {
  std::vector<WaitingMail> waiting;
  RepeatedStatement select(connection, selectLatest);
  RepeatedStatement upsert(connection, upsertWaiting);
  RepeatedStatement remove(connection, "DELETE FROM waiting_thread WHERE thread_id = ?");
  for (const auto& threadID : threadIDs) {
    auto& latest = select.query(threadID);
    if (latest.next()) {
      upsert.execute(threadID, latest.text(Column{1}), latest.text(Column{2}));
      waiting.push_back({threadID, std::string{latest.text(Column{0})}});
    } else {
      remove.execute(threadID);
    }
  }
  return waiting;
}

} // namespace orvan
