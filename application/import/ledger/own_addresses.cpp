#include "application/import/ledger/own_addresses.h"

#include <vector>

#include "application/import/ledger/question_ledger.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/ledger/waiting_threads.h"

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

std::vector<std::string> threadsOf(const std::string& identityID, Connection& connection) {
  std::vector<std::string> threadIDs;
  auto rows = connection.query("SELECT thread_id FROM thread_participant WHERE source_identity_id = ?", identityID);
  while (rows.next()) {
    threadIDs.emplace_back(rows.text(Column{0}));
  }
  return threadIDs;
}

/// What was taken for somebody else's is the user's from now on: the mails were sent by the user, to whom is told when
/// they are read again, and the user is not listed among the participants.
void takeFromOthers(const std::string& identityID, std::string_view now, Connection& connection) {
  connection.execute("UPDATE identity_membership SET ended_at = ? WHERE source_identity_id = ? AND ended_at IS NULL",
                     now, identityID);
  connection.execute(R"sql(
UPDATE interaction SET direction = 'outbound', source_identity_id = NULL
WHERE source_identity_id = ?1 AND direction = 'inbound'
  AND id IN (SELECT interaction_id FROM interaction_participant WHERE source_identity_id = ?1)
)sql",
                     identityID);
  const auto threadIDs = threadsOf(identityID, connection);
  for (const char* statement : {
           "DELETE FROM pending_question WHERE source_identity_id = ?",
           "DELETE FROM interaction_participant WHERE source_identity_id = ?",
           "DELETE FROM thread_participant WHERE source_identity_id = ?",
           "DELETE FROM contact_week WHERE source_identity_id = ?",
           "DELETE FROM contact_span WHERE source_identity_id = ?",
           "DELETE FROM waiting_thread WHERE source_identity_id = ?",
       }) {
    connection.execute(statement, identityID);
  }
  refreshWaitingThreads(threadIDs, connection);
  QuestionLedger questions;
  for (const auto& threadID : threadIDs) {
    questions.reconsiderThread(threadID);
  }
  questions.settle(now, connection);
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
