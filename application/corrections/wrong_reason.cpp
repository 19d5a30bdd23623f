#include "application/corrections/wrong_reason.h"

#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "application/corrections/hiding.h"
#include "application/corrections/user_correction.h"

namespace orvan {
namespace {

/// The mail and those that came in the same thread at the same second: each of them would have the thread wait.
std::vector<std::string> mailsAtOnceWith(const std::string& interactionID, Connection& connection) {
  std::vector<std::string> ids;
  auto rows = connection.query(R"sql(
SELECT other.id
FROM interaction mail
JOIN interaction other ON other.thread_id = mail.thread_id AND other.occurred_at = mail.occurred_at
WHERE mail.id = ? AND other.direction = 'inbound'
)sql",
                               interactionID);
  while (rows.next()) {
    ids.emplace_back(rows.text(Column{0}));
  }
  return ids;
}

/// Gives the claim's id. A conversation that was settled by the same mail before keeps its claim.
std::string claimSettled(const std::string& personID, const std::string& interactionID, Instant now,
                         ChangeRecorder& recorder, Connection& connection) {
  auto claimID = interactionID + "-settled";
  const auto evidenceID = claimID + "-evidence";
  recorder.watch(ChangedTable::claim, {claimID});
  recorder.watch(ChangedTable::claimEvidence, {evidenceID});
  connection.execute("INSERT OR IGNORE INTO claim (id, person_id, kind, created_at) VALUES (?, ?, 'settled_thread', ?)",
                     claimID, personID, formatInternetDateTime(now));
  connection.execute(R"sql(
INSERT OR IGNORE INTO claim_evidence (id, claim_id, source_event_id)
SELECT ?, ?, source_event_id FROM interaction WHERE id = ?
)sql",
                     evidenceID, claimID, interactionID);
  return claimID;
}

} // namespace

void dropQuestion(const std::string& openLoopID, Instant now, ChangeRecorder& recorder, Connection& connection) {
  recorder.watch(ChangedTable::openLoop, {openLoopID});
  connection.execute("UPDATE open_loop SET state = 'dismissed' WHERE id = ?", openLoopID);
  const auto claimID = connection.fetchOptionalText(R"sql(
SELECT proof.claim_id
FROM open_loop ol
JOIN claim_evidence proof ON proof.id = ol.evidence_ref
WHERE ol.id = ?
)sql",
                                                    openLoopID);
  if (claimID) {
    noteCorrection(CorrectionTarget::claim, *claimID, now, recorder, connection);
  }
}

void settleConversation(const std::string& personID, const std::string& interactionID, Instant now,
                        ChangeRecorder& recorder, Connection& connection) {
  const auto claimID = claimSettled(personID, interactionID, now, recorder, connection);
  noteCorrection(CorrectionTarget::claim, claimID, now, recorder, connection);
  for (const auto& mailID : mailsAtOnceWith(interactionID, connection)) {
    if (!hiddenThing(HiddenScope::mail, mailID, connection)) {
      hide(HiddenScope::mail, mailID, now, recorder, connection);
    }
  }
}

} // namespace orvan
