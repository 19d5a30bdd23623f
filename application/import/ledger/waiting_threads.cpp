#include "application/import/ledger/waiting_threads.h"

#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

/// Of several latest ones at the same second any serves: a list looks at the person's evidence itself.
constexpr const char* upsertWaiting = R"sql(
INSERT INTO waiting_thread (thread_id, source_identity_id, since)
SELECT latest.thread_id, latest.source_identity_id, latest.occurred_at
FROM (
  SELECT thread_id, source_identity_id, occurred_at, direction, source_event_id
  FROM interaction
  WHERE thread_id = ?1
  ORDER BY occurred_at DESC
  LIMIT 1
) latest
JOIN source_event event ON event.id = latest.source_event_id AND event.conversation_kind = 'direct'
WHERE latest.direction = 'inbound' AND latest.source_identity_id IS NOT NULL
ON CONFLICT DO UPDATE SET source_identity_id = excluded.source_identity_id, since = excluded.since
)sql";

} // namespace

void refreshWaitingThreads(const std::set<std::string>& threadIDs, Connection& connection) {
  RepeatedStatement upsert(connection, upsertWaiting);
  RepeatedStatement remove(connection, "DELETE FROM waiting_thread WHERE thread_id = ?");
  for (const auto& threadID : threadIDs) {
    upsert.execute(threadID);
    if (connection.changes() == 0) {
      remove.execute(threadID);
    }
  }
}

} // namespace orvan
