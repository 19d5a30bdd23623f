#include "application/import/ledger/question_ledger.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/repeated_statement.h"
#include "application/import/ledger/people_ledger.h"

namespace orvan {
namespace {

constexpr std::string_view selectPending =
    "SELECT interaction_id, message_key, thread_id, source_identity_id, asked_at, question FROM pending_question "
    "WHERE ";

template <typename Values>
void appendPending(std::string_view column, const Values& values, std::vector<AskedQuestion>& pending,
                   Connection& connection) {
  RepeatedStatement select(connection, std::string{selectPending} + std::string{column} + " = ?");
  for (const auto& value : values) {
    auto& rows = select.query(value);
    while (rows.next()) {
      pending.push_back({std::string{rows.text(Column{0})}, MailKey{rows.integer(Column{1})},
                         std::string{rows.text(Column{2})}, std::string{rows.text(Column{3})},
                         std::string{rows.text(Column{4})}, std::string{rows.text(Column{5})}});
    }
  }
}

/// A mail of the user's without known readers may have gone to anybody in the thread.
bool isAnswered(const AskedQuestion& question, Connection& connection) {
  return connection
      .fetchOptionalInteger(R"sql(
SELECT 1
WHERE EXISTS (SELECT 1 FROM mail_reference WHERE message_key = ?1 AND is_answered)
   OR EXISTS (
     SELECT 1
     FROM interaction answer
     WHERE answer.thread_id = ?2 AND answer.direction = 'outbound' AND answer.occurred_at > ?4
       AND NOT EXISTS (SELECT 1 FROM outdated_mail WHERE outdated_mail.interaction_id = answer.id)
       AND (EXISTS (SELECT 1 FROM interaction_participant reader
                    WHERE reader.source_identity_id = ?3 AND reader.interaction_id = answer.id)
            OR NOT EXISTS (SELECT 1 FROM thread_participant known
                           JOIN interaction_participant reader
                             ON reader.source_identity_id = known.source_identity_id
                            AND reader.interaction_id = answer.id
                           WHERE known.thread_id = ?2)))
)sql",
                            std::to_underlying(question.mail), question.threadID, question.sourceIdentityID,
                            question.askedAt)
      .has_value();
}

bool mayAsk(const AskedQuestion& question, Connection& connection) {
  return connection
      .fetchOptionalInteger(R"sql(
SELECT 1
WHERE EXISTS (
    SELECT 1
    FROM identity_membership asker
    JOIN identity_membership known ON known.canonical_person_id = asker.canonical_person_id
    JOIN contact_span span ON span.source_identity_id = known.source_identity_id
    WHERE asker.source_identity_id = ?1 AND asker.ended_at IS NULL AND known.ended_at IS NULL
      AND span.first_reached_at < ?2)
   OR EXISTS (
    SELECT 1 FROM interaction earlier
    WHERE earlier.thread_id = ?3 AND earlier.direction = 'outbound' AND earlier.occurred_at < ?2)
)sql",
                            question.sourceIdentityID, question.askedAt, question.threadID)
      .has_value();
}

std::string openLoopIDOf(const AskedQuestion& question) {
  return question.interactionID + "-loop";
}

/// One second after the mail: of two reasons that rest on the same mail the question is the more telling one, and
/// whatever happens later still comes before it.
std::string detectedAt(const AskedQuestion& question) {
  const auto asked = parseInternetDateTime(question.askedAt);
  return asked ? formatInternetDateTime(*asked + std::chrono::seconds{1}) : question.askedAt;
}

void keep(const AskedQuestion& question, Connection& connection) {
  connection.execute(R"sql(
INSERT OR IGNORE INTO pending_question
  (interaction_id, message_key, thread_id, source_identity_id, asked_at, question)
VALUES (?, ?, ?, ?, ?, ?)
)sql",
                     question.interactionID, std::to_underlying(question.mail), question.threadID,
                     question.sourceIdentityID, question.askedAt, question.question);
}

void forget(const AskedQuestion& question, Connection& connection) {
  connection.execute("DELETE FROM pending_question WHERE interaction_id = ?", question.interactionID);
}

void closeLoop(const AskedQuestion& question, Connection& connection) {
  connection.execute("UPDATE open_loop SET state = 'done' WHERE id = ? AND state IN ('open', 'surfaced')",
                     openLoopIDOf(question));
}

void openLoop(const AskedQuestion& question, std::string_view personID, std::string_view now, Connection& connection) {
  const auto claimID = question.interactionID + "-question";
  const auto evidenceID = question.interactionID + "-evidence";
  connection.execute("INSERT OR IGNORE INTO claim (id, person_id, kind, created_at) VALUES (?, ?, 'asked_question', ?)",
                     claimID, personID, now);
  connection.execute("INSERT OR IGNORE INTO claim_text (claim_id, statement) VALUES (?, ?)", claimID,
                     question.question);
  connection.execute("INSERT OR IGNORE INTO claim_evidence (id, claim_id, source_event_id) VALUES (?, ?, ?)",
                     evidenceID, claimID, question.interactionID);
  connection.execute(R"sql(
INSERT OR IGNORE INTO open_loop (id, person_id, kind, evidence_ref, detected_at, state, created_at)
VALUES (?, ?, 'unanswered_question', ?, ?, 'open', ?)
)sql",
                     openLoopIDOf(question), personID, evidenceID, detectedAt(question), now);
}

/// Whether it still waits for an answer.
bool settleOne(const AskedQuestion& question, std::string_view now, Connection& connection) {
  if (isAnswered(question, connection)) {
    closeLoop(question, connection);
    return false;
  }
  if (mayAsk(question, connection)) {
    if (const auto personID = personOfIdentity(question.sourceIdentityID, connection)) {
      openLoop(question, *personID, now, connection);
    }
  }
  return true;
}

} // namespace

void forgetAnswers(Connection& connection) {
  connection.execute(R"sql(
DELETE FROM open_loop
WHERE kind = 'unanswered_question' AND state = 'done'
  AND id NOT IN (SELECT open_loop_id FROM follow_up WHERE open_loop_id IS NOT NULL)
)sql");
}

void QuestionLedger::reconsiderPeople(const std::vector<std::string>& identityIDs) {
  identityIDs_.insert(identityIDs.begin(), identityIDs.end());
}

void QuestionLedger::settle(std::string_view now, Connection& connection) {
  settleStored(now, connection);
  settleNoted(now, connection);
  *this = {};
}

void QuestionLedger::settleStored(std::string_view now, Connection& connection) {
  std::vector<std::int64_t> keys;
  keys.reserve(mails_.size());
  for (const auto mail : mails_) {
    keys.push_back(std::to_underlying(mail));
  }
  std::vector<AskedQuestion> pending;
  appendPending("thread_id", threadIDs_, pending, connection);
  appendPending("source_identity_id", identityIDs_, pending, connection);
  appendPending("message_key", keys, pending, connection);
  std::ranges::sort(pending, {}, &AskedQuestion::interactionID);
  const auto duplicates = std::ranges::unique(pending, {}, &AskedQuestion::interactionID);
  pending.erase(duplicates.begin(), duplicates.end());
  for (const auto& question : pending) {
    if (!settleOne(question, now, connection)) {
      forget(question, connection);
    }
  }
}

/// Most are answered by a mail of the same batch and never reach the table.
void QuestionLedger::settleNoted(std::string_view now, Connection& connection) {
  std::ranges::sort(noted_, {}, &AskedQuestion::interactionID);
  for (const auto& question : noted_) {
    if (settleOne(question, now, connection)) {
      keep(question, connection);
    }
  }
}

} // namespace orvan
