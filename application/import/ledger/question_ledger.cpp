#include "application/import/ledger/question_ledger.h"

#include <chrono>
#include <string>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "application/import/ledger/people_ledger.h"

namespace orvan {
namespace {

struct PendingQuestion {
  std::string interactionID;
  std::string threadID;
  std::string sourceIdentityID;
  std::string askedAt;
  std::string question;
};

/// Questions are weighed in groups, so that their number does not matter to memory.
constexpr int groupSize = 1000;

std::vector<PendingQuestion> pendingAfter(std::string_view interactionID, Connection& connection) {
  std::vector<PendingQuestion> pending;
  auto rows = connection.query(R"sql(
SELECT interaction_id, thread_id, source_identity_id, asked_at, question
FROM pending_question
WHERE interaction_id > ?
ORDER BY interaction_id
LIMIT ?
)sql",
                               interactionID, groupSize);
  while (rows.next()) {
    pending.push_back({std::string{rows.text(Column{0})}, std::string{rows.text(Column{1})},
                       std::string{rows.text(Column{2})}, std::string{rows.text(Column{3})},
                       std::string{rows.text(Column{4})}});
  }
  return pending;
}

bool isAnswered(const PendingQuestion& question, Connection& connection) {
  return connection
      .fetchOptionalInteger(
          "SELECT 1 FROM interaction "
          "WHERE thread_id = ? AND direction = 'outbound' AND source_identity_id IS NULL AND occurred_at > ? LIMIT 1",
          question.threadID, question.askedAt)
      .has_value();
}

bool userWroteBefore(const PendingQuestion& question, Connection& connection) {
  return connection
      .fetchOptionalInteger(
          "SELECT 1 FROM interaction "
          "WHERE thread_id = ? AND direction = 'outbound' AND source_identity_id IS NULL AND occurred_at < ? LIMIT 1",
          question.threadID, question.askedAt)
      .has_value();
}

bool isBetweenTwo(const PendingQuestion& question, Connection& connection) {
  return connection.fetchOptionalInteger(
             "SELECT count(*) FROM (SELECT 1 FROM thread_participant WHERE thread_id = ? LIMIT 2)",
             question.threadID) == 1;
}

std::string openLoopIDOf(const PendingQuestion& question) {
  return question.interactionID + "-loop";
}

/// One second after the mail: of two reasons that rest on the same mail the question is the more telling one, and
/// whatever happens later still comes before it.
std::string detectedAt(const PendingQuestion& question) {
  const auto asked = parseInternetDateTime(question.askedAt);
  return asked ? formatInternetDateTime(*asked + std::chrono::seconds{1}) : question.askedAt;
}

void forget(const PendingQuestion& question, Connection& connection) {
  connection.execute("DELETE FROM pending_question WHERE interaction_id = ?", question.interactionID);
}

void closeLoop(const PendingQuestion& question, Connection& connection) {
  connection.execute("UPDATE open_loop SET state = 'done' WHERE id = ? AND state IN ('open', 'surfaced')",
                     openLoopIDOf(question));
}

void openLoop(const PendingQuestion& question, std::string_view personID, std::string_view now,
              Connection& connection) {
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

void settle(const PendingQuestion& question, std::string_view now, Connection& connection) {
  if (isAnswered(question, connection)) {
    closeLoop(question, connection);
    forget(question, connection);
    return;
  }
  if (!isBetweenTwo(question, connection) || !userWroteBefore(question, connection)) {
    return;
  }
  if (const auto personID = personOfIdentity(question.sourceIdentityID, connection)) {
    openLoop(question, *personID, now, connection);
  }
}

} // namespace

void noteQuestion(const AskedQuestion& asked, Connection& connection) {
  connection.execute(R"sql(
INSERT OR IGNORE INTO pending_question (interaction_id, thread_id, source_identity_id, asked_at, question)
VALUES (?, ?, ?, ?, ?)
)sql",
                     asked.interactionID, asked.threadID, asked.sourceIdentityID, asked.askedAt, asked.question);
}

void settleQuestions(std::string_view now, Connection& connection) {
  std::string last;
  for (auto group = pendingAfter(last, connection); !group.empty(); group = pendingAfter(last, connection)) {
    for (const auto& question : group) {
      settle(question, now, connection);
    }
    last = group.back().interactionID;
  }
}

} // namespace orvan
