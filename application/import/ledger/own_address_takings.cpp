#include "application/import/ledger/own_address_takings.h"

#include <initializer_list>
#include <vector>

#include "application/import/ledger/contact_ledger.h"
#include "application/import/ledger/question_ledger.h"
#include "application/import/ledger/stored_interactions.h"
#include "application/import/ledger/waiting_threads.h"

namespace orvan {
namespace {

std::vector<std::string> textsIn(Query rows) {
  std::vector<std::string> texts;
  while (rows.next()) {
    texts.emplace_back(rows.text(Column{0}));
  }
  return texts;
}

std::vector<std::string> threadsOf(const std::string& identityID, Connection& connection) {
  return textsIn(connection.query("SELECT thread_id FROM thread_participant WHERE source_identity_id = ?", identityID));
}

void executeEach(std::initializer_list<const char*> statements, const std::string& identityID, Connection& connection) {
  for (const char* statement : statements) {
    connection.execute(statement, identityID);
  }
}

/// Loops are called as the question ledger calls them.
void writeDown(const std::string& identityID, Connection& connection) {
  executeEach({R"sql(
INSERT OR IGNORE INTO own_address_taking (source_identity_id, role, object_id)
SELECT source_identity_id, 'membership', id FROM identity_membership
WHERE source_identity_id = ? AND ended_at IS NULL
)sql",
               R"sql(
INSERT OR IGNORE INTO own_address_taking (source_identity_id, role, object_id)
SELECT source_identity_id, 'participant', interaction_id FROM interaction_participant
WHERE source_identity_id = ?
)sql",
               R"sql(
INSERT OR IGNORE INTO own_address_taking (source_identity_id, role, object_id)
SELECT i.source_identity_id, 'sender', i.id
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id AND i.source_identity_id = present.source_identity_id
WHERE present.source_identity_id = ? AND i.direction = 'inbound'
)sql",
               R"sql(
INSERT OR IGNORE INTO own_address_question
  (own_identity_id, interaction_id, message_key, source_identity_id, asked_at, question, loop_state)
SELECT ?1, asked.interaction_id, asked.message_key, asked.source_identity_id, asked.asked_at, asked.question,
       loop.state
FROM pending_question asked
LEFT JOIN open_loop loop ON loop.id = asked.interaction_id || '-loop'
WHERE asked.source_identity_id = ?1
   OR asked.thread_id IN (SELECT thread_id FROM thread_participant WHERE source_identity_id = ?1)
)sql"},
              identityID, connection);
}

/// Of the questions that were written down, those that the taking left alone need not be given back.
void forgetQuestionsStillPending(const std::string& identityID, Connection& connection) {
  connection.execute(R"sql(
DELETE FROM own_address_question
WHERE own_identity_id = ? AND interaction_id IN (SELECT interaction_id FROM pending_question)
)sql",
                     identityID);
}

void reconsider(const std::vector<std::string>& threadIDs, const std::vector<std::string>& identityIDs,
                std::string_view now, Connection& connection) {
  refreshWaitingThreads(threadIDs, connection);
  QuestionLedger questions;
  for (const auto& threadID : threadIDs) {
    questions.reconsiderThread(threadID);
  }
  questions.reconsiderPeople(identityIDs);
  questions.settle(now, connection);
}

/// Where nothing was written down, as in stores of older versions, the first membership is the one that ended. A person
/// that was removed meanwhile begins anew, by the name of the address.
void giveBackMembership(const std::string& identityID, std::string_view now, Connection& connection) {
  connection.execute(R"sql(
UPDATE identity_membership SET ended_at = NULL
WHERE source_identity_id = ?1
  AND id IN (SELECT object_id FROM own_address_taking WHERE source_identity_id = ?1 AND role = 'membership'
             UNION
             SELECT ?1 WHERE NOT EXISTS (SELECT 1 FROM own_address_taking
                                         WHERE source_identity_id = ?1 AND role = 'membership'))
  AND NOT EXISTS (SELECT 1 FROM identity_membership other WHERE other.source_identity_id = ?1 AND other.ended_at IS NULL)
)sql",
                     identityID);
  connection.execute(R"sql(
INSERT INTO person (id, display_name, created_at)
SELECT membership.canonical_person_id, identity.display_name, ?2
FROM identity_membership membership
JOIN source_identity identity ON identity.id = membership.source_identity_id
WHERE membership.source_identity_id = ?1 AND membership.ended_at IS NULL
ON CONFLICT DO NOTHING
)sql",
                     identityID, now);
}

/// Mails that were read as the user's meanwhile have made other rows; only those that stand as they were taken go back.
void giveBackMails(const std::string& identityID, Connection& connection) {
  executeEach({R"sql(
UPDATE interaction SET direction = 'inbound', source_identity_id = ?1
WHERE id IN (SELECT object_id FROM own_address_taking WHERE source_identity_id = ?1 AND role = 'sender')
  AND direction = 'outbound' AND source_identity_id IS NULL
)sql",
               R"sql(
INSERT OR IGNORE INTO interaction_participant (source_identity_id, interaction_id)
SELECT taken.source_identity_id, taken.object_id
FROM own_address_taking taken
JOIN interaction i ON i.id = taken.object_id
WHERE taken.source_identity_id = ? AND taken.role = 'participant'
)sql",
               R"sql(
INSERT OR IGNORE INTO thread_participant (source_identity_id, thread_id)
SELECT present.source_identity_id, i.thread_id
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id AND i.thread_id IS NOT NULL
WHERE present.source_identity_id = ?
)sql"},
              identityID, connection);
}

/// Those who are reached earlier than was thought.
std::vector<std::string> countContact(const std::string& identityID, Connection& connection) {
  ContactLedger contact;
  const auto interactionIDs = textsIn(
      connection.query("SELECT interaction_id FROM interaction_participant WHERE source_identity_id = ?", identityID));
  for (const auto& interactionID : interactionIDs) {
    if (const auto row = storedInteraction(interactionID, connection)) {
      contact.addFor(identityID, *row);
    }
  }
  return contact.write(connection);
}

/// The loops stand as they stood, and are weighed again with what is known now.
void giveBackQuestions(const std::string& identityID, Connection& connection) {
  executeEach({R"sql(
INSERT OR IGNORE INTO pending_question
  (interaction_id, message_key, thread_id, source_identity_id, asked_at, question)
SELECT taken.interaction_id, taken.message_key, i.thread_id, taken.source_identity_id, taken.asked_at, taken.question
FROM own_address_question taken
JOIN interaction i ON i.id = taken.interaction_id AND i.thread_id IS NOT NULL
WHERE taken.own_identity_id = ?
)sql",
               R"sql(
UPDATE open_loop SET state = taken.loop_state
FROM own_address_question taken
WHERE taken.own_identity_id = ? AND open_loop.id = taken.interaction_id || '-loop'
  AND open_loop.state = 'done' AND taken.loop_state IS NOT NULL
)sql"},
              identityID, connection);
}

} // namespace

void takeFromOthers(const std::string& identityID, std::string_view now, Connection& connection) {
  writeDown(identityID, connection);
  const auto threadIDs = threadsOf(identityID, connection);
  connection.execute("UPDATE identity_membership SET ended_at = ? WHERE source_identity_id = ? AND ended_at IS NULL",
                     now, identityID);
  executeEach(
      {R"sql(
UPDATE interaction SET direction = 'outbound', source_identity_id = NULL
WHERE id IN (SELECT object_id FROM own_address_taking WHERE source_identity_id = ? AND role = 'sender')
)sql",
       "DELETE FROM pending_question WHERE source_identity_id = ?",
       "DELETE FROM interaction_participant WHERE source_identity_id = ?",
       "DELETE FROM thread_participant WHERE source_identity_id = ?",
       "DELETE FROM contact_week WHERE source_identity_id = ?", "DELETE FROM contact_span WHERE source_identity_id = ?",
       "DELETE FROM waiting_thread WHERE source_identity_id = ?"},
      identityID, connection);
  reconsider(threadIDs, {}, now, connection);
  forgetQuestionsStillPending(identityID, connection);
}

void giveBack(const std::string& identityID, std::string_view now, Connection& connection) {
  giveBackMembership(identityID, now, connection);
  giveBackMails(identityID, connection);
  const auto reached = countContact(identityID, connection);
  giveBackQuestions(identityID, connection);
  reconsider(threadsOf(identityID, connection), reached, now, connection);
  executeEach({"DELETE FROM own_address_taking WHERE source_identity_id = ?",
               "DELETE FROM own_address_question WHERE own_identity_id = ?"},
              identityID, connection);
}

} // namespace orvan
