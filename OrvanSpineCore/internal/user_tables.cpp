#include "OrvanSpineCore/internal/user_tables.h"

namespace orvan::internal {
namespace {

// Who gave a person the name that they have, where it was not their addresses: the greater name_rank, the better they
// know, as with source_identity.name_rank. The greatest is the user, whose word no import changes. A table of its own,
// so that rows of person that others insert keep their shape.
constexpr const char* names = R"sql(
CREATE TABLE person_naming (
  person_id TEXT NOT NULL PRIMARY KEY,
  name_rank INTEGER NOT NULL
) STRICT, WITHOUT ROWID;
)sql";

// What a list of people shows of each: how many mails went to an identity and how many came from it, and when the
// latest of them was. Meetings are not among them, because some of them are still to come.
constexpr const char* contactTotals = R"sql(
ALTER TABLE contact_span ADD COLUMN mails_to INTEGER NOT NULL DEFAULT 0;
ALTER TABLE contact_span ADD COLUMN mails_from INTEGER NOT NULL DEFAULT 0;
ALTER TABLE contact_span ADD COLUMN last_mail_at TEXT;

UPDATE contact_span
SET mails_to = mails.mails_to, mails_from = mails.mails_from, last_mail_at = mails.last_mail_at
FROM (
  SELECT present.source_identity_id AS identity,
         sum(i.direction = 'outbound') AS mails_to,
         sum(i.direction = 'inbound') AS mails_from,
         max(i.occurred_at) AS last_mail_at
  FROM interaction_participant present
  JOIN interaction i ON i.id = present.interaction_id AND i.kind = 'message'
  GROUP BY 1
) mails
WHERE mails.identity = contact_span.source_identity_id;

-- When somebody was met last, without a look at the weeks of everybody's mail.
CREATE INDEX contact_week_of_meetings ON contact_week (source_identity_id, week) WHERE met > 0;
)sql";

// What the user did, in order, and what taking it back needs to know. kind names the action; detail is JSON.
constexpr const char* actions = R"sql(
CREATE TABLE user_action (
  number INTEGER PRIMARY KEY AUTOINCREMENT,
  kind TEXT NOT NULL,
  person_id TEXT,
  happened_at TEXT NOT NULL,
  undone_at TEXT,
  detail TEXT NOT NULL
) STRICT;
CREATE INDEX user_action_by_person ON user_action (person_id);

-- Under which key each person's reason was shown last, so that a decision on a name is one about what was seen.
CREATE TABLE shown_item (
  person_id TEXT NOT NULL PRIMARY KEY,
  item_key TEXT NOT NULL,
  shown_at TEXT NOT NULL
) STRICT, WITHOUT ROWID;
)sql";

// told_by is 'import' or 'user', who said it by itself. has_mail tells whether a mail names the address, NULL for
// addresses told before that was kept; was_read_with, whether any source was read since the address was told.
//
// What was taken for somebody else's until its address was said to be the user's: role is 'membership', 'sender' or
// 'participant', and object_id names the membership, or the interaction. Questions are kept whole, with the state of
// their open loop. When the address is given up, all of it goes back.
constexpr const char* ownAddresses = R"sql(
ALTER TABLE own_address ADD COLUMN told_by TEXT NOT NULL DEFAULT 'import';
ALTER TABLE own_address ADD COLUMN has_mail INTEGER;
ALTER TABLE own_address ADD COLUMN was_read_with INTEGER NOT NULL DEFAULT 1;

CREATE TABLE own_address_taking (
  source_identity_id TEXT NOT NULL,
  role TEXT NOT NULL,
  object_id TEXT NOT NULL,
  PRIMARY KEY (source_identity_id, role, object_id)
) STRICT, WITHOUT ROWID;

CREATE TABLE own_address_question (
  own_identity_id TEXT NOT NULL,
  interaction_id TEXT NOT NULL,
  message_key INTEGER NOT NULL,
  source_identity_id TEXT NOT NULL,
  asked_at TEXT NOT NULL,
  question TEXT NOT NULL,
  loop_state TEXT,
  PRIMARY KEY (own_identity_id, interaction_id)
) STRICT, WITHOUT ROWID;

-- Mails of the user's that may turn out to be another's when they are read again: until then they answer nobody.
CREATE TABLE outdated_mail (
  interaction_id TEXT NOT NULL PRIMARY KEY
) STRICT, WITHOUT ROWID;
)sql";

// Addresses that the user has had forgotten are deletion tombstones of the object_type 'identity', which only imports
// ask for. Whoever asks whether there are any others finds that out from one entry.
constexpr const char* forgotten = R"sql(
CREATE INDEX deletion_tombstone_of_history ON deletion_tombstone (object_type) WHERE object_type <> 'identity';
)sql";

// What is to be brought up to date. kind is 'mail', 'calendar' or 'cards'; path is absolute. What a source brings has
// an account of its own. read_for stands for the user's addresses at the time: with others, the same mails tell more.
constexpr const char* sources = R"sql(
CREATE TABLE remembered_source (
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  kind TEXT NOT NULL,
  path TEXT NOT NULL UNIQUE,
  source_account_id TEXT NOT NULL,
  usual_interval_seconds INTEGER NOT NULL,
  added_at TEXT NOT NULL,
  last_tried_at TEXT,
  last_succeeded_at TEXT,
  last_fault TEXT,
  read_for TEXT
) STRICT;

-- How far each file or folder of a source was read. name is its path below the source's, empty for the source itself.
-- size, inode and modified_at are the file system's; modified_at is 0 where it has to be looked at again in any case.
-- digest is of what stands before read_up_to in a mailbox, or of the names and sizes of a calendar's files.
CREATE TABLE source_position (
  source_id INTEGER NOT NULL REFERENCES remembered_source (id) ON DELETE CASCADE,
  name TEXT NOT NULL,
  size INTEGER NOT NULL,
  inode INTEGER NOT NULL,
  modified_at INTEGER NOT NULL,
  read_up_to INTEGER NOT NULL,
  digest TEXT NOT NULL,
  PRIMARY KEY (source_id, name)
) STRICT, WITHOUT ROWID;

-- The files of a source's Maildirs that were read, each as a number made from its name.
CREATE TABLE source_mail_file (
  source_id INTEGER NOT NULL REFERENCES remembered_source (id) ON DELETE CASCADE,
  file_key INTEGER NOT NULL,
  PRIMARY KEY (source_id, file_key)
) STRICT, WITHOUT ROWID;
)sql";

} // namespace

void createWhatTheUserSays(Connection& connection) {
  for (const char* script : {names, contactTotals, actions, ownAddresses, forgotten, sources}) {
    connection.executeScript(script);
  }
}

} // namespace orvan::internal
