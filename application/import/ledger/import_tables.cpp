#include "application/import/ledger/import_tables.h"

namespace orvan {

void createImportTables(Connection& connection) {
  connection.executeScript(R"sql(
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
)sql");
}

} // namespace orvan
