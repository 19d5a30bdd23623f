#include "application/corrections/forgetting.h"

#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "application/corrections/mention.h"
#include "application/import/ledger/contact_ledger.h"
#include "application/import/ledger/own_addresses.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/ledger/stored_interactions.h"
#include "application/import/ledger/waiting_threads.h"

namespace orvan {
namespace {

/// Ids are handed to a statement as one JSON text, of which it makes a table: ?1 of all statements below.
class IDs {
 public:
  void add(std::string id) { ids_.insert(std::move(id)); }
  void addAll(Query rows) {
    while (rows.next()) {
      add(std::string{rows.text(Column{0})});
    }
  }

  bool contains(const std::string& id) const { return ids_.contains(id); }
  bool isEmpty() const noexcept { return ids_.empty(); }
  std::string json() const { return nlohmann::json(ids_).dump(-1, ' ', false, replacing); }
  std::vector<std::string> list() const { return {ids_.begin(), ids_.end()}; }

 private:
  static constexpr auto replacing = nlohmann::json::error_handler_t::replace;

  std::set<std::string> ids_;
};

void executeEach(std::initializer_list<const char*> statements, const IDs& ids, Connection& connection) {
  if (ids.isEmpty()) {
    return;
  }
  const auto json = ids.json();
  for (const char* statement : statements) {
    connection.execute(statement, json);
  }
}

/// A person with all that is theirs: the addresses, the people who became one with them, and the mails and meetings.
struct Person {
  std::string key;
  /// The key and those of the people who went into this one.
  IDs personIDs;
  IDs identityIDs;
  /// What is deleted whole, and what stays with others.
  std::vector<InteractionRow> alone;
  std::vector<InteractionRow> shared;
  IDs threadIDs;
};

IDs ownIdentityIDs(Connection& connection) {
  IDs identityIDs;
  for (const auto& own : ownAddresses(connection)) {
    identityIDs.add(identityIDOf(own.address));
  }
  return identityIDs;
}

/// Those that are the person's, and those that were and are nobody's now. False when there are only the user's own.
bool findIdentities(Person& person, Connection& connection) {
  const auto own = ownIdentityIDs(connection);
  IDs found;
  found.addAll(connection.query(R"sql(
SELECT membership.source_identity_id
FROM identity_membership membership
WHERE membership.canonical_person_id = ?1
  AND NOT EXISTS (
    SELECT 1 FROM identity_membership other
    WHERE other.source_identity_id = membership.source_identity_id AND other.canonical_person_id <> ?1
      AND other.ended_at IS NULL AND other.state IN ('high_conf', 'confirmed'))
)sql",
                                person.key));
  for (const auto& identityID : found.list()) {
    if (!own.contains(identityID)) {
      person.identityIDs.add(identityID);
    }
  }
  return found.isEmpty() || !person.identityIDs.isEmpty();
}

void findPeople(Person& person, Connection& connection) {
  person.personIDs.add(person.key);
  person.personIDs.addAll(connection.query(R"sql(
SELECT earlier.canonical_person_id
FROM identity_membership earlier
WHERE earlier.source_identity_id IN (SELECT value FROM json_each(?1))
  AND NOT EXISTS (
    SELECT 1 FROM identity_membership live
    WHERE live.canonical_person_id = earlier.canonical_person_id AND live.ended_at IS NULL
      AND live.source_identity_id NOT IN (SELECT value FROM json_each(?1)))
)sql",
                                           person.identityIDs.json()));
}

/// Whose mail it is, or with whom the user has it alone.
bool isTheirs(const InteractionRow& row, const Person& person) {
  const auto isOne = [&person](const std::string& identityID) { return person.identityIDs.contains(identityID); };
  return (row.senderIdentityID && isOne(*row.senderIdentityID)) ||
         std::ranges::all_of(row.participantIdentityIDs, isOne);
}

void findHistory(Person& person, Connection& connection) {
  IDs interactionIDs;
  interactionIDs.addAll(connection.query(R"sql(
SELECT interaction_id FROM interaction_participant
WHERE source_identity_id IN (SELECT value FROM json_each(?1))
UNION
SELECT i.id
FROM thread_participant known
JOIN interaction i ON i.thread_id = known.thread_id AND i.source_identity_id = known.source_identity_id
WHERE known.source_identity_id IN (SELECT value FROM json_each(?1))
)sql",
                                         person.identityIDs.json()));
  person.threadIDs.addAll(connection.query(
      "SELECT thread_id FROM thread_participant WHERE source_identity_id IN (SELECT value FROM json_each(?))",
      person.identityIDs.json()));
  for (const auto& interactionID : interactionIDs.list()) {
    if (auto row = storedInteraction(interactionID, connection)) {
      person.threadIDs.add(row->threadID);
      (isTheirs(*row, person) ? person.alone : person.shared).push_back(*std::move(row));
    }
  }
}

std::optional<Person> findPerson(const std::string& personKey, Connection& connection) {
  if (!connection.fetchOptionalInteger("SELECT 1 FROM person WHERE id = ?", personKey)) {
    return std::nullopt;
  }
  Person person;
  person.key = personKey;
  if (!findIdentities(person, connection)) {
    return std::nullopt;
  }
  findPeople(person, connection);
  findHistory(person, connection);
  return person;
}

std::int64_t count(const char* statement, const IDs& ids, Connection& connection) {
  return connection.fetchOptionalInteger(statement, ids.json()).value_or(0);
}

TracesOfPerson tracesOf(const Person& person, Connection& connection) {
  TracesOfPerson traces;
  traces.personKey = person.key;
  traces.displayName =
      connection.fetchOptionalText("SELECT display_name FROM person WHERE id = ?", person.key).value_or("");
  IDs addresses;
  addresses.addAll(connection.query("SELECT address FROM source_identity WHERE id IN (SELECT value FROM json_each(?))",
                                    person.identityIDs.json()));
  traces.addresses = addresses.list();
  traces.meetings = std::ranges::count(person.alone, "meeting", &InteractionRow::kind);
  traces.mails = static_cast<std::int64_t>(person.alone.size()) - traces.meetings;
  traces.shared = static_cast<std::int64_t>(person.shared.size());
  traces.decisions = count(R"sql(
SELECT count(*) FROM relationship_attention_disposition
WHERE person_id IN (SELECT value FROM json_each(?))
)sql",
                           person.personIDs, connection);
  traces.followUps = count("SELECT count(*) FROM follow_up WHERE person_id IN (SELECT value FROM json_each(?))",
                           person.personIDs, connection);
  return traces;
}

/// Deletes what was found of a person, one subject after the other. Rows are found by others first and deleted last.
class Deletion {
 public:
  Deletion(const Person& person, std::string_view now, Connection& connection)
      : person_(person), now_(now), connection_(connection) {}

  void run() {
    deleteActions();
    deleteDecisions();
    deleteClaims();
    deleteHistory();
    deleteEmptyThreads();
    deletePerson();
    leaveTombstones();
  }

 private:
  /// What the user did names people in words too.
  void deleteActions() {
    const auto needles = namesAndIDs();
    std::vector<std::int64_t> numbers;
    {
      auto rows = connection_.query("SELECT number, person_id, detail FROM user_action");
      while (rows.next()) {
        const std::string personID{rows.optionalText(Column{1}).value_or("")};
        const auto detail = rows.text(Column{2});
        if (person_.personIDs.contains(personID) ||
            std::ranges::any_of(needles, [detail](const auto& needle) { return isMentioned(needle, detail); })) {
          numbers.push_back(rows.integer(Column{0}));
        }
      }
    }
    for (const auto number : numbers) {
      connection_.execute("DELETE FROM user_action WHERE number = ?", number);
    }
    executeEach({"DELETE FROM shown_item WHERE person_id IN (SELECT value FROM json_each(?))"}, person_.personIDs,
                connection_);
  }

  std::vector<std::string> namesAndIDs() {
    IDs needles;
    for (const auto* ids : {&person_.personIDs, &person_.identityIDs}) {
      for (auto& id : ids->list()) {
        needles.add(std::move(id));
      }
    }
    needles.addAll(connection_.query(R"sql(
SELECT display_name FROM person WHERE id IN (SELECT value FROM json_each(?1))
UNION SELECT display_name FROM source_identity WHERE id IN (SELECT value FROM json_each(?2))
UNION SELECT address FROM source_identity WHERE id IN (SELECT value FROM json_each(?2))
)sql",
                                     person_.personIDs.json(), person_.identityIDs.json()));
    return needles.list();
  }

  /// An object that others have follow-ups on stays with what was captured of it; a thread's object goes with its
  /// thread.
  void deleteDecisions() {
    IDs objectIDs;
    objectIDs.addAll(connection_.query(R"sql(
SELECT theirs.source_object_id
FROM follow_up theirs
WHERE theirs.person_id IN (SELECT value FROM json_each(?1))
  AND NOT EXISTS (
    SELECT 1 FROM follow_up other
    WHERE other.source_object_id = theirs.source_object_id
      AND other.person_id NOT IN (SELECT value FROM json_each(?1)))
)sql",
                                       person_.personIDs.json()));
    executeEach({"DELETE FROM capture_artifact WHERE source_object_id IN (SELECT value FROM json_each(?))",
                 R"sql(
DELETE FROM source_object WHERE id IN (SELECT value FROM json_each(?))
AND id NOT IN (SELECT id FROM thread)
)sql"},
                objectIDs, connection_);
    executeEach({R"sql(
DELETE FROM post_commit_obligation
WHERE kind = 'reminder' AND operation_id IN (
  SELECT origin_operation_id FROM follow_up WHERE person_id IN (SELECT value FROM json_each(?)))
)sql",
                 "DELETE FROM follow_up WHERE person_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM relationship_attention_disposition WHERE person_id IN (SELECT value FROM json_each(?))",
                 R"sql(
DELETE FROM relationship_attention_candidate_evidence
WHERE candidate_key IN (SELECT candidate_key FROM relationship_attention_candidate
                        WHERE person_id IN (SELECT value FROM json_each(?)))
)sql",
                 "DELETE FROM relationship_attention_candidate WHERE person_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM exclusion_rule WHERE scope = 'person' AND target_id IN (SELECT value FROM json_each(?))",
                 R"sql(
DELETE FROM user_correction
WHERE target_type = 'person' AND target_id IN (SELECT value FROM json_each(?))
)sql"},
                person_.personIDs, connection_);
  }

  /// Claims about the person, and those about others that rest on nothing but what is deleted.
  void deleteClaims() {
    IDs claimIDs;
    claimIDs.addAll(connection_.query("SELECT id FROM claim WHERE person_id IN (SELECT value FROM json_each(?))",
                                      person_.personIDs.json()));
    claimIDs.addAll(connection_.query(R"sql(
SELECT evidence.claim_id
FROM claim_evidence evidence
WHERE evidence.source_event_id IN (SELECT value FROM json_each(?1))
  AND NOT EXISTS (
    SELECT 1 FROM claim_evidence other
    WHERE other.claim_id = evidence.claim_id
      AND other.source_event_id NOT IN (SELECT value FROM json_each(?1)))
)sql",
                                      eventsAlone().json()));
    executeEach({R"sql(
DELETE FROM open_loop WHERE evidence_ref IN (SELECT id FROM claim_evidence
WHERE claim_id IN (SELECT value FROM json_each(?)))
)sql",
                 "DELETE FROM claim_evidence WHERE claim_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM claim_text WHERE claim_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM claim WHERE id IN (SELECT value FROM json_each(?))",
                 R"sql(
DELETE FROM user_correction
WHERE target_type = 'claim' AND target_id IN (SELECT value FROM json_each(?))
)sql"},
                claimIDs, connection_);
    executeEach({"DELETE FROM claim_evidence WHERE source_event_id IN (SELECT value FROM json_each(?))"}, eventsAlone(),
                connection_);
    executeEach({"DELETE FROM open_loop WHERE person_id IN (SELECT value FROM json_each(?))"}, person_.personIDs,
                connection_);
  }

  IDs interactionsAlone() const {
    IDs interactionIDs;
    for (const auto& row : person_.alone) {
      interactionIDs.add(row.id);
    }
    return interactionIDs;
  }

  /// The source events that no other interaction shares.
  IDs eventsAlone() const {
    IDs eventIDs;
    eventIDs.addAll(connection_.query(R"sql(
SELECT i.source_event_id
FROM interaction i
WHERE i.id IN (SELECT value FROM json_each(?1))
  AND NOT EXISTS (
    SELECT 1 FROM interaction other
    WHERE other.source_event_id = i.source_event_id AND other.id NOT IN (SELECT value FROM json_each(?1)))
)sql",
                                      interactionsAlone().json()));
    return eventIDs;
  }

  void deleteHistory() {
    ContactLedger contact;
    executeEach({"DELETE FROM source_event WHERE id IN (SELECT value FROM json_each(?))"}, eventsAlone(), connection_);
    for (const auto& row : person_.alone) {
      contact.remove(row);
      deleteInteraction(row, connection_);
    }
    for (const auto& row : person_.shared) {
      contact.remove(row);
      contact.add(withoutThem(row));
    }
    contact.write(connection_);
    executeEach({"DELETE FROM calendar_entry WHERE interaction_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM own_address_taking WHERE object_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM own_address_question WHERE interaction_id IN (SELECT value FROM json_each(?))",
                 R"sql(
DELETE FROM exclusion_rule
WHERE scope = 'interaction' AND target_id IN (SELECT value FROM json_each(?))
)sql"},
                interactionsAlone(), connection_);
    executeEach({"DELETE FROM interaction_participant WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM thread_participant WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM pending_question WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM waiting_thread WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM contact_week WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM contact_span WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM address_use WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM own_address_taking WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM own_address_question WHERE source_identity_id IN (SELECT value FROM json_each(?))"},
                person_.identityIDs, connection_);
  }

  InteractionRow withoutThem(InteractionRow row) const {
    std::erase_if(row.participantIdentityIDs, [this](const auto& id) { return person_.identityIDs.contains(id); });
    return row;
  }

  /// Threads with others stay, with their subject. Mails that are known stay known, but of no thread.
  void deleteEmptyThreads() {
    refreshWaitingThreads(person_.threadIDs.list(), connection_);
    IDs emptyIDs;
    emptyIDs.addAll(connection_.query(R"sql(
SELECT thread.id
FROM thread
WHERE thread.id IN (SELECT value FROM json_each(?))
  AND NOT EXISTS (SELECT 1 FROM interaction i WHERE i.thread_id = thread.id)
)sql",
                                      person_.threadIDs.json()));
    executeEach({R"sql(
UPDATE mail_reference SET thread_id = NULL
WHERE thread_id IN (SELECT value FROM json_each(?1)
                    UNION SELECT thread_id FROM merged_thread WHERE merged_into IN (SELECT value FROM json_each(?1)))
)sql",
                 "DELETE FROM merged_thread WHERE merged_into IN (SELECT value FROM json_each(?))",
                 R"sql(
DELETE FROM capture_artifact WHERE source_object_id IN (SELECT value FROM json_each(?))
AND source_object_id NOT IN (SELECT source_object_id FROM follow_up)
)sql",
                 R"sql(
DELETE FROM source_object WHERE id IN (SELECT value FROM json_each(?))
AND id NOT IN (SELECT source_object_id FROM follow_up)
)sql",
                 "DELETE FROM exclusion_rule WHERE scope = 'thread' AND target_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM thread_participant WHERE thread_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM thread_text WHERE thread_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM thread WHERE id IN (SELECT value FROM json_each(?))"},
                emptyIDs, connection_);
  }

  void deletePerson() {
    executeEach({R"sql(
DELETE FROM user_correction WHERE target_type = 'identity_membership' AND target_id IN (
SELECT id FROM identity_membership WHERE source_identity_id IN (SELECT value FROM json_each(?)))
)sql",
                 "DELETE FROM identity_membership WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM mailbox_kind WHERE source_identity_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM source_identity WHERE id IN (SELECT value FROM json_each(?))"},
                person_.identityIDs, connection_);
    detachOthers();
    executeEach({"DELETE FROM person_naming WHERE person_id IN (SELECT value FROM json_each(?))",
                 "DELETE FROM person WHERE id IN (SELECT value FROM json_each(?))"},
                person_.personIDs, connection_);
  }

  /// Addresses that were theirs and are another's, or the user's, by now keep their rows, so that no import gives them
  /// a second person.
  void detachOthers() {
    IDs identityIDs;
    identityIDs.addAll(connection_.query(R"sql(
SELECT source_identity_id FROM identity_membership
WHERE canonical_person_id IN (SELECT value FROM json_each(?))
)sql",
                                         person_.personIDs.json()));
    for (const auto& identityID : identityIDs.list()) {
      connection_.execute(R"sql(
UPDATE identity_membership
SET canonical_person_id = COALESCE(
  (SELECT live.canonical_person_id FROM identity_membership live
   WHERE live.source_identity_id = ?1 AND live.ended_at IS NULL),
  ?2)
WHERE source_identity_id = ?1 AND canonical_person_id IN (SELECT value FROM json_each(?3))
)sql",
                          identityID, personIDOf(identityID), person_.personIDs.json());
    }
  }

  void leaveTombstones() {
    for (const auto& identityID : person_.identityIDs.list()) {
      connection_.execute(
          "INSERT OR REPLACE INTO deletion_tombstone (object_id, object_type, deleted_at) VALUES (?, 'identity', ?)",
          identityID, now_);
    }
  }

  const Person& person_;
  std::string_view now_;
  Connection& connection_;
};

} // namespace

std::optional<TracesOfPerson> tracesOf(const std::string& personKey, Connection& connection) {
  const auto person = findPerson(personKey, connection);
  return person ? std::optional{tracesOf(*person, connection)} : std::nullopt;
}

std::optional<TracesOfPerson> forget(const std::string& personKey, std::string_view now, Connection& connection) {
  const auto person = findPerson(personKey, connection);
  if (!person) {
    return std::nullopt;
  }
  auto traces = tracesOf(*person, connection);
  Deletion(*person, now, connection).run();
  return traces;
}

} // namespace orvan
