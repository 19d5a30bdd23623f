#include "OrvanSpineCore/canonical_schema.h"

#include <array>
#include <string>

#include "OrvanSpineCore/internal/contact_by_person.h"
#include "OrvanSpineCore/internal/user_tables.h"

namespace orvan {
namespace {

// Rows are clustered by their keys (WITHOUT ROWID) and indices carry every column their statements read, because a page
// that has to be read and decrypted costs more than anything SQLite does with it. For the same reason long texts live
// in tables of their own: the inner pages of a clustered table hold whole rows.
//
// STRICT keeps every column what it says. All timestamps are UTC text with whole seconds and "Z".

constexpr const char* people = R"sql(
CREATE TABLE person (
  id TEXT NOT NULL PRIMARY KEY,
  display_name TEXT NOT NULL,
  created_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE source_account (
  id TEXT NOT NULL PRIMARY KEY,
  source_type TEXT NOT NULL,
  created_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;

-- One address of somebody, in mail or in a calendar. name_rank tells how much the source of the name should know: a
-- better one replaces it.
CREATE TABLE source_identity (
  id TEXT NOT NULL PRIMARY KEY,
  address TEXT NOT NULL,
  display_name TEXT NOT NULL,
  name_rank INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

-- Which person an identity belongs to; live while ended_at is NULL and state is 'high_conf' or 'confirmed'.
CREATE TABLE identity_membership (
  id TEXT NOT NULL PRIMARY KEY,
  source_identity_id TEXT NOT NULL,
  canonical_person_id TEXT NOT NULL,
  state TEXT NOT NULL,
  ended_at TEXT
) STRICT, WITHOUT ROWID;
CREATE INDEX identity_membership_by_person
  ON identity_membership (canonical_person_id, ended_at, state, source_identity_id);
CREATE INDEX identity_membership_by_identity ON identity_membership (source_identity_id, ended_at);
)sql";

constexpr const char* history = R"sql(
CREATE TABLE thread (
  id TEXT NOT NULL PRIMARY KEY,
  source_type TEXT NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE thread_text (
  thread_id TEXT NOT NULL PRIMARY KEY,
  subject TEXT NOT NULL
) STRICT, WITHOUT ROWID;

-- The user's own identities take part in everything and are left out of both participant tables.
CREATE TABLE thread_participant (
  source_identity_id TEXT NOT NULL,
  thread_id TEXT NOT NULL,
  PRIMARY KEY (source_identity_id, thread_id)
) STRICT, WITHOUT ROWID;
CREATE INDEX thread_participant_by_thread ON thread_participant (thread_id, source_identity_id);

-- What a source reported: one message or one occurrence of a meeting. conversation_kind is 'direct' or 'group'.
CREATE TABLE source_event (
  id TEXT NOT NULL PRIMARY KEY,
  source_account_id TEXT NOT NULL,
  conversation_kind TEXT NOT NULL
) STRICT, WITHOUT ROWID;

-- kind is 'message' or 'meeting'; direction is 'inbound', 'outbound' or 'mutual' (a meeting). source_identity_id is who
-- wrote the message, NULL for the user and for meetings.
CREATE TABLE interaction (
  id TEXT NOT NULL PRIMARY KEY,
  thread_id TEXT,
  source_event_id TEXT NOT NULL,
  source_identity_id TEXT,
  direction TEXT NOT NULL,
  kind TEXT NOT NULL,
  occurred_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;
-- There is deliberately no index on (kind, occurred_at): it would make the planner walk everybody's meetings.
-- One index finds a thread's later interactions and, by its further columns, which of them came in from whom.
CREATE INDEX interaction_by_thread
  ON interaction (thread_id, occurred_at, direction, source_identity_id, id, source_event_id);
CREATE INDEX interaction_by_source_event ON interaction (source_event_id, id, thread_id);

CREATE TABLE interaction_participant (
  source_identity_id TEXT NOT NULL,
  interaction_id TEXT NOT NULL,
  PRIMARY KEY (source_identity_id, interaction_id)
) STRICT, WITHOUT ROWID;

CREATE TABLE source_progress_projection (
  source_account_id TEXT NOT NULL,
  operation TEXT NOT NULL,
  freshness_state TEXT NOT NULL,
  last_successful_sync_at TEXT,
  PRIMARY KEY (source_account_id, operation)
) STRICT, WITHOUT ROWID;
)sql";

constexpr const char* claimsAndLoops = R"sql(
CREATE TABLE claim (
  id TEXT NOT NULL PRIMARY KEY,
  person_id TEXT NOT NULL,
  kind TEXT NOT NULL,
  created_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX claim_by_person ON claim (person_id);

CREATE TABLE claim_text (
  claim_id TEXT NOT NULL PRIMARY KEY,
  statement TEXT NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE claim_evidence (
  id TEXT NOT NULL PRIMARY KEY,
  claim_id TEXT NOT NULL,
  source_event_id TEXT NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX claim_evidence_by_claim ON claim_evidence (claim_id);

-- state is 'open', 'surfaced', 'done' or 'dismissed'; evidence_ref names a claim_evidence row.
CREATE TABLE open_loop (
  id TEXT NOT NULL PRIMARY KEY,
  person_id TEXT NOT NULL,
  kind TEXT NOT NULL,
  evidence_ref TEXT,
  detected_at TEXT NOT NULL,
  state TEXT NOT NULL,
  created_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX open_loop_by_person ON open_loop (person_id, state, detected_at DESC, id);

-- target_type is 'person', 'claim' or 'identity_membership'.
CREATE TABLE user_correction (
  id TEXT NOT NULL PRIMARY KEY,
  target_type TEXT NOT NULL,
  target_id TEXT NOT NULL,
  created_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;
-- The target comes before its type: with the type first, the planner walks every correction of that type.
CREATE INDEX user_correction_by_target ON user_correction (target_id, target_type, created_at);
)sql";

constexpr const char* whatMayBeShown = R"sql(
-- What the user does not want shown: scope is 'person', 'thread', 'interaction' or 'source_account'; in force while
-- ended_at is NULL.
CREATE TABLE exclusion_rule (
  id TEXT NOT NULL PRIMARY KEY,
  scope TEXT NOT NULL,
  target_id TEXT NOT NULL,
  created_at TEXT NOT NULL,
  ended_at TEXT
) STRICT, WITHOUT ROWID;
CREATE INDEX exclusion_rule_by_target ON exclusion_rule (scope, target_id, ended_at) WHERE ended_at IS NULL;

-- What was deleted: object_type is 'person', 'thread', 'source_event', 'interaction' or 'source_object'.
CREATE TABLE deletion_tombstone (
  object_id TEXT NOT NULL,
  object_type TEXT NOT NULL,
  deleted_at TEXT NOT NULL,
  PRIMARY KEY (object_id, object_type)
) STRICT, WITHOUT ROWID;
)sql";

constexpr const char* attention = R"sql(
CREATE TABLE relationship_attention_candidate (
  candidate_key TEXT NOT NULL PRIMARY KEY,
  person_id TEXT NOT NULL,
  kind TEXT NOT NULL,
  why_now_code TEXT NOT NULL,
  defining_event_at TEXT NOT NULL,
  due_at TEXT,
  expires_at TEXT,
  generator_version TEXT NOT NULL,
  created_at TEXT NOT NULL
) STRICT;

-- Evidence goes with its candidate: whoever deletes a candidate need not know of it.
CREATE TABLE relationship_attention_candidate_evidence (
  candidate_key TEXT NOT NULL
    REFERENCES relationship_attention_candidate (candidate_key) ON DELETE CASCADE,
  reference_kind TEXT NOT NULL,
  reference_id TEXT NOT NULL,
  PRIMARY KEY (candidate_key, reference_kind, reference_id)
) STRICT, WITHOUT ROWID;
CREATE INDEX relationship_attention_candidate_evidence_by_reference
  ON relationship_attention_candidate_evidence (reference_kind, reference_id);

CREATE TABLE relationship_attention_disposition (
  candidate_key TEXT NOT NULL PRIMARY KEY
    REFERENCES relationship_attention_candidate (candidate_key),
  person_id TEXT NOT NULL,
  state TEXT NOT NULL,
  snoozed_until TEXT,
  created_at TEXT NOT NULL,
  updated_at TEXT NOT NULL
) STRICT;
CREATE INDEX relationship_attention_disposition_by_person ON relationship_attention_disposition (person_id);
)sql";

constexpr const char* followUps = R"sql(
-- What a follow-up is about, for example a thread.
CREATE TABLE source_object (
  id TEXT NOT NULL PRIMARY KEY,
  kind TEXT NOT NULL,
  created_at TEXT NOT NULL,
  tombstoned_at TEXT
) STRICT, WITHOUT ROWID;

-- What the user said when capturing an object, as JSON; rows keep their order of arrival.
CREATE TABLE capture_artifact (
  id TEXT NOT NULL PRIMARY KEY,
  source_object_id TEXT NOT NULL,
  user_context TEXT
) STRICT;
CREATE INDEX capture_artifact_by_object ON capture_artifact (source_object_id);

-- state is 'scheduled', 'completed' or 'cancelled'.
CREATE TABLE follow_up (
  id TEXT NOT NULL PRIMARY KEY,
  source_object_id TEXT NOT NULL,
  person_id TEXT NOT NULL,
  due_at TEXT NOT NULL,
  state TEXT NOT NULL,
  created_at TEXT NOT NULL,
  completed_at TEXT,
  origin_operation_id TEXT,
  open_loop_id TEXT
) STRICT;
CREATE INDEX follow_up_by_pair ON follow_up (source_object_id, person_id, created_at DESC, id DESC);
CREATE INDEX follow_up_scheduled_by_person ON follow_up (person_id) WHERE state = 'scheduled';
CREATE INDEX follow_up_scheduled ON follow_up (source_object_id, person_id) WHERE state = 'scheduled';
)sql";

constexpr const char* actions = R"sql(
-- What an action owes to the world outside the store after its commit; owed while settled_at is NULL. kind is 'reminder'
-- (a notification is to be registered) or 'undone_unlink' (the notification under notification_key is to be gone).
-- operation_id is a UUID in lowercase.
CREATE TABLE post_commit_obligation (
  operation_id TEXT NOT NULL,
  kind TEXT NOT NULL,
  notification_key TEXT NOT NULL,
  created_at TEXT NOT NULL,
  settled_at TEXT,
  PRIMARY KEY (operation_id, kind, notification_key)
) STRICT, WITHOUT ROWID;
CREATE INDEX post_commit_obligation_owed
  ON post_commit_obligation (kind, notification_key) WHERE settled_at IS NULL;
)sql";

// What only the importers use. They made these tables themselves in stores of version 1, where they may be missing.
constexpr const char* imports = R"sql(
CREATE TABLE IF NOT EXISTS own_address (
  address TEXT NOT NULL PRIMARY KEY
) STRICT, WITHOUT ROWID;

-- Every Message-ID that was read or referred to, as a number made from it: which thread it belongs to, and whether the
-- mail itself was 'imported', 'passed_over' (nobody wrote it to the user) or only 'referenced' so far.
CREATE TABLE IF NOT EXISTS mail_reference (
  message_key INTEGER PRIMARY KEY,
  thread_id TEXT,
  state TEXT NOT NULL
) STRICT;

-- Threads that a later mail showed to be part of another one.
CREATE TABLE IF NOT EXISTS merged_thread (
  thread_id TEXT NOT NULL PRIMARY KEY,
  merged_into TEXT NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS merged_thread_by_target ON merged_thread (merged_into);

-- Questions put to the user that are not known to be answered.
CREATE TABLE IF NOT EXISTS pending_question (
  interaction_id TEXT NOT NULL PRIMARY KEY,
  thread_id TEXT NOT NULL,
  source_identity_id TEXT NOT NULL,
  asked_at TEXT NOT NULL,
  question TEXT NOT NULL
) STRICT, WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS pending_question_by_thread ON pending_question (thread_id);

-- Which calendar files list a meeting and at which import of each it was seen last.
CREATE TABLE IF NOT EXISTS calendar_entry (
  interaction_id TEXT NOT NULL,
  calendar TEXT NOT NULL,
  seen_in INTEGER NOT NULL,
  PRIMARY KEY (interaction_id, calendar)
) STRICT, WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS calendar_entry_by_calendar ON calendar_entry (calendar, seen_in);
)sql";

// What tells, without a look at anybody's history, who can have a reason to be written to and how much the user deals
// with whom. Whoever writes interactions keeps these along with them.
// What was imported before is told as far as it is known: who else was on a mail is no contact, and which mails were to
// the user alone is learned when they are read again.
constexpr const char* contact = R"sql(
-- The mailboxes that are nobody's, who are not projected: kind is 'role' (an office), 'machine', 'list', or 'likely_list'
-- (it is written to as a list is).
CREATE TABLE mailbox_kind (
  source_identity_id TEXT NOT NULL PRIMARY KEY,
  kind TEXT NOT NULL
) STRICT, WITHOUT ROWID;

-- How much there was between the user and an identity in a week, counted in whole weeks since 1970: mails that the user
-- sent to them, mails that they sent to the user alone, mails to or from them in the company of others, and meetings.
-- The week comes first: an import goes forward in time, and a list looks at the last year.
CREATE TABLE contact_week (
  week INTEGER NOT NULL,
  source_identity_id TEXT NOT NULL,
  sent INTEGER NOT NULL,
  received INTEGER NOT NULL,
  in_company INTEGER NOT NULL,
  met INTEGER NOT NULL,
  PRIMARY KEY (week, source_identity_id)
) STRICT, WITHOUT ROWID;

-- Since when there is contact at all, and since when the user wrote to the identity or met it.
CREATE TABLE contact_span (
  source_identity_id TEXT NOT NULL PRIMARY KEY,
  first_contact_at TEXT NOT NULL,
  first_reached_at TEXT
) STRICT, WITHOUT ROWID;

-- The threads whose latest interaction is a mail to the user alone, and who wrote it when.
CREATE TABLE waiting_thread (
  thread_id TEXT NOT NULL PRIMARY KEY,
  source_identity_id TEXT NOT NULL,
  since TEXT NOT NULL
) STRICT, WITHOUT ROWID;

-- What a mail program finds a message by.
CREATE TABLE message_text (
  interaction_id TEXT NOT NULL PRIMARY KEY,
  message_id TEXT NOT NULL
) STRICT, WITHOUT ROWID;

-- Where a meeting takes place, when the calendar tells, and whether it has no time of day. Most meetings have no row.
CREATE TABLE meeting_text (
  interaction_id TEXT NOT NULL PRIMARY KEY,
  location TEXT NOT NULL,
  is_all_day INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

-- state is what a mail is as far as its copies tell: 'referenced' (none was read yet), 'passed_over' (it does not concern
-- the user), 'group', 'direct' or 'own'. is_answered tells whether a mail of the user's refers to it.
ALTER TABLE mail_reference ADD COLUMN is_answered INTEGER NOT NULL DEFAULT 0;
UPDATE mail_reference SET state = 'group' WHERE state = 'imported';

ALTER TABLE pending_question ADD COLUMN message_key INTEGER NOT NULL DEFAULT 0;
CREATE INDEX pending_question_by_identity ON pending_question (source_identity_id);
CREATE INDEX pending_question_by_message ON pending_question (message_key);

-- How an address is used by others than the user: on how many mails it stands as a reader, who wrote these (each writer
-- a bit), and how many mails came from it. An address that many write to and that never writes is a list.
CREATE TABLE address_use (
  source_identity_id TEXT NOT NULL PRIMARY KEY,
  named INTEGER NOT NULL,
  named_by INTEGER NOT NULL,
  written INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

DELETE FROM interaction_participant
WHERE EXISTS (
  SELECT 1 FROM interaction mail
  WHERE mail.id = interaction_participant.interaction_id AND mail.direction = 'inbound'
    AND mail.source_identity_id <> interaction_participant.source_identity_id);

INSERT INTO contact_week (week, source_identity_id, sent, received, in_company, met)
SELECT strftime('%s', i.occurred_at) / 604800, present.source_identity_id,
       sum(i.direction = 'outbound'),
       sum(i.direction = 'inbound' AND event.conversation_kind = 'direct'),
       sum(i.direction = 'inbound' AND event.conversation_kind <> 'direct'),
       sum(i.kind = 'meeting')
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id
JOIN source_event event ON event.id = i.source_event_id
GROUP BY 1, 2;

INSERT INTO contact_span (source_identity_id, first_contact_at, first_reached_at)
SELECT present.source_identity_id, min(i.occurred_at),
       min(CASE WHEN i.direction <> 'inbound' THEN i.occurred_at END)
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id
GROUP BY 1;

INSERT INTO waiting_thread (thread_id, source_identity_id, since)
SELECT latest.thread_id, latest.source_identity_id, latest.occurred_at
FROM interaction latest
JOIN source_event event ON event.id = latest.source_event_id AND event.conversation_kind = 'direct'
WHERE latest.direction = 'inbound' AND latest.source_identity_id IS NOT NULL AND latest.thread_id IS NOT NULL
  AND NOT EXISTS (
    SELECT 1 FROM interaction later
    WHERE later.thread_id = latest.thread_id AND later.occurred_at > latest.occurred_at)
ON CONFLICT DO NOTHING;
)sql";

void createWhatTheLibraryReads(Connection& connection) {
  for (const char* script : {people, history, claimsAndLoops, whatMayBeShown, attention, followUps, actions}) {
    connection.executeScript(script);
  }
}

void createWhatImportsRemember(Connection& connection) {
  connection.executeScript(imports);
}

void createWhatTellsOfContact(Connection& connection) {
  connection.executeScript(contact);
}

/// From the version before to `version`, within the caller's transaction.
struct Step {
  std::int64_t version;
  void (*make)(Connection& connection);
};

// A new store goes all steps, an older one those that it lacks. A step that was published stays as it is; what is to
// change becomes the next one.
constexpr std::array<Step, 5> steps{{
    {1, createWhatTheLibraryReads},
    {2, createWhatImportsRemember},
    {3, createWhatTellsOfContact},
    {4, internal::createWhatTheUserSays},
    {5, internal::createWhatTellsOfContactByPerson},
}};

void makeStepsAfter(std::int64_t version, Connection& connection) {
  for (const auto& step : steps) {
    if (step.version > version) {
      step.make(connection);
      connection.executeScript("PRAGMA user_version = " + std::to_string(step.version));
    }
  }
}

} // namespace

SchemaIdentity SchemaIdentity::of(Connection& connection) {
  return {connection.fetchOptionalInteger("PRAGMA application_id").value_or(0),
          connection.fetchOptionalInteger("PRAGMA user_version").value_or(0)};
}

SchemaIdentity SchemaIdentity::newest() noexcept {
  return {orvan, steps.back().version};
}

void createCanonicalSchema(Connection& connection) {
  makeStepsAfter(0, connection);
  connection.executeScript("PRAGMA application_id = " + std::to_string(SchemaIdentity::orvan));
}

void moveCanonicalSchemaForward(Connection& connection) {
  makeStepsAfter(SchemaIdentity::of(connection).version, connection);
}

} // namespace orvan
