#include "application/import/ledger/own_addresses.h"

#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

std::set<std::string> ownAddresses(Connection& connection) {
  std::set<std::string> addresses;
  auto rows = connection.query("SELECT address FROM own_address");
  while (rows.next()) {
    addresses.emplace(rows.text(Column{0}));
  }
  return addresses;
}

/// A mail in company of nobody but the user is between two. An interaction's participants are looked for among those of
/// its thread: they are not kept by interaction.
void becomeBetweenTwo(const std::string& identityID, Connection& connection) {
  connection.execute(R"sql(
UPDATE source_event SET conversation_kind = 'direct'
WHERE conversation_kind = 'group' AND id IN (
  SELECT event.source_event_id
  FROM interaction_participant own
  JOIN interaction event ON event.id = own.interaction_id
  JOIN thread_participant other ON other.thread_id = event.thread_id AND other.source_identity_id <> ?1
  JOIN interaction_participant present
    ON present.source_identity_id = other.source_identity_id AND present.interaction_id = event.id
  WHERE own.source_identity_id = ?1
  GROUP BY event.id
  HAVING count(*) = 1
)
)sql",
                     identityID);
}

/// What was taken for somebody else's is the user's from now on: the mails were sent by the user, and the user is not
/// listed among the participants.
void takeFromOthers(const std::string& identityID, std::string_view now, Connection& connection) {
  connection.execute("UPDATE identity_membership SET ended_at = ? WHERE source_identity_id = ? AND ended_at IS NULL",
                     now, identityID);
  connection.execute(R"sql(
UPDATE interaction SET direction = 'outbound', source_identity_id = NULL
WHERE source_identity_id = ?1 AND direction = 'inbound'
  AND id IN (SELECT interaction_id FROM interaction_participant WHERE source_identity_id = ?1)
)sql",
                     identityID);
  becomeBetweenTwo(identityID, connection);
  connection.execute("DELETE FROM pending_question WHERE source_identity_id = ?", identityID);
  connection.execute("DELETE FROM interaction_participant WHERE source_identity_id = ?", identityID);
  connection.execute("DELETE FROM thread_participant WHERE source_identity_id = ?", identityID);
}

} // namespace

std::set<std::string> rememberOwnAddresses(std::span<const std::string> addresses, std::string_view now,
                                           Connection& connection) {
  for (const auto& address : addresses) {
    connection.execute("INSERT OR IGNORE INTO own_address (address) VALUES (?)", address);
    if (connection.changes() > 0) {
      takeFromOthers(identityIDOf(address), now, connection);
    }
  }
  return ownAddresses(connection);
}

} // namespace orvan
