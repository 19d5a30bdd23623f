#include <initializer_list>
#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "application/cli/backup_commands.h"
#include "application/cli/command_failure.h"
#include "application/cli/json_output.h"
#include "application/session/person_lookup.h"

namespace orvan {
namespace {

/// Raised when a name of the document goes or changes its meaning; what is added leaves it.
constexpr int formatVersion = 1;

Json valueIn(const Query& row, Column column) {
  if (row.holdsNull(column)) {
    return nullptr;
  }
  const auto text = row.optionalText(column);
  return text ? Json(*text) : Json(row.integer(column));
}

/// The rows in the statement's order, each with these of its columns.
Json rowsOf(Connection& connection, const char* statement, std::initializer_list<const char*> columns) {
  Json found = Json::array();
  auto rows = connection.query(statement);
  while (rows.next()) {
    Json row = Json::object();
    for (const char* name : columns) {
      row[name] = valueIn(rows, rows.column(name));
    }
    found.push_back(std::move(row));
  }
  return found;
}

/// What is kept as JSON text becomes a part of the document.
Json withParsed(Json rows, const char* name) {
  for (auto& row : rows) {
    if (row[name].is_string()) {
      auto parsed = Json::parse(row[name].get_ref<const std::string&>(), nullptr, false);
      if (!parsed.is_discarded()) {
        row[name] = std::move(parsed);
      }
    }
  }
  return rows;
}

Json addressesOfUser(Connection& connection) {
  Json addresses = Json::array();
  auto rows = connection.query("SELECT address FROM own_address ORDER BY address");
  while (rows.next()) {
    addresses.push_back(rows.text(Column{0}));
  }
  return addresses;
}

Json decisions(Connection& connection) {
  return rowsOf(
      connection, R"sql(
SELECT d.candidate_key AS itemKey, d.person_id AS personKey, d.state AS state, d.snoozed_until AS until,
       c.kind AS reasonKind, c.why_now_code AS reason, c.defining_event_at AS reasonAt,
       d.created_at AS decidedAt, d.updated_at AS changedAt
FROM relationship_attention_disposition d
JOIN relationship_attention_candidate c ON c.candidate_key = d.candidate_key
ORDER BY d.created_at, d.candidate_key
)sql",
      {"itemKey", "personKey", "state", "until", "reasonKind", "reason", "reasonAt", "decidedAt", "changedAt"});
}

Json actions(Connection& connection) {
  return withParsed(rowsOf(connection, R"sql(
SELECT number, kind, person_id AS personKey, happened_at AS happenedAt, undone_at AS undoneAt, detail
FROM user_action
ORDER BY number
)sql",
                           {"number", "kind", "personKey", "happenedAt", "undoneAt", "detail"}),
                    "detail");
}

Json corrections(Connection& connection) {
  return rowsOf(connection, R"sql(
SELECT target_type AS targetKind, target_id AS targetID, created_at AS correctedAt
FROM user_correction
ORDER BY created_at, target_type, target_id, id
)sql",
                {"targetKind", "targetID", "correctedAt"});
}

Json names(Connection& connection) {
  return rowsOf(connection, R"sql(
SELECT person.id AS personKey, person.display_name AS displayName
FROM person_naming naming
JOIN person ON person.id = naming.person_id
ORDER BY person.id
)sql",
                {"personKey", "displayName"});
}

Json memberships(Connection& connection) {
  return rowsOf(connection, R"sql(
SELECT identity.address AS address, membership.canonical_person_id AS personKey, membership.ended_at AS endedAt
FROM identity_membership membership
JOIN source_identity identity ON identity.id = membership.source_identity_id
WHERE membership.state = 'confirmed' OR membership.ended_at IS NOT NULL
ORDER BY identity.address, membership.canonical_person_id, membership.id
)sql",
                {"address", "personKey", "endedAt"});
}

Json hidden(Connection& connection) {
  return rowsOf(connection, R"sql(
SELECT scope, target_id AS targetID, words.subject AS subject, created_at AS hiddenAt, ended_at AS shownAgainAt
FROM exclusion_rule
LEFT JOIN thread_text words ON scope = 'thread' AND words.thread_id = target_id
ORDER BY created_at, scope, target_id, id
)sql",
                {"scope", "targetID", "subject", "hiddenAt", "shownAgainAt"});
}

/// What was forgotten has no name any more; how many of each kind there are is all that can be said.
Json forgotten(Connection& connection) {
  return rowsOf(connection, R"sql(
SELECT object_type AS kind, count(*) AS count
FROM deletion_tombstone
GROUP BY object_type
ORDER BY object_type
)sql",
                {"kind", "count"});
}

Json followUps(Connection& connection) {
  return rowsOf(
      connection, R"sql(
SELECT id AS followUpID, source_object_id AS sourceObjectID, person_id AS personKey, due_at AS dueAt, state,
       created_at AS createdAt, completed_at AS completedAt, open_loop_id AS openLoopID
FROM follow_up
ORDER BY created_at, id
)sql",
      {"followUpID", "sourceObjectID", "personKey", "dueAt", "state", "createdAt", "completedAt", "openLoopID"});
}

Json captures(Connection& connection) {
  return withParsed(rowsOf(connection, R"sql(
SELECT object.id AS sourceObjectID, object.kind AS kind, object.created_at AS createdAt,
       artifact.user_context AS userContext
FROM source_object object
JOIN capture_artifact artifact ON artifact.source_object_id = object.id
ORDER BY object.created_at, object.id, artifact.rowid
)sql",
                           {"sourceObjectID", "kind", "createdAt", "userContext"}),
                    "userContext");
}

Json sources(Connection& connection) {
  return rowsOf(connection, R"sql(
SELECT kind, path, usual_interval_seconds AS usualIntervalSeconds, added_at AS addedAt
FROM remembered_source
ORDER BY path
)sql",
                {"kind", "path", "usualIntervalSeconds", "addedAt"});
}

/// Those whom the rest of the document names by key.
Json peopleNamed(Connection& connection) {
  auto people = rowsOf(connection, R"sql(
SELECT id AS personKey, display_name AS displayName
FROM person
WHERE id IN (
  SELECT person_id FROM relationship_attention_disposition
  UNION SELECT person_id FROM user_action WHERE person_id IS NOT NULL
  UNION SELECT target_id FROM user_correction WHERE target_type = 'person'
  UNION SELECT person_id FROM person_naming
  UNION SELECT canonical_person_id FROM identity_membership WHERE state = 'confirmed' OR ended_at IS NOT NULL
  UNION SELECT target_id FROM exclusion_rule WHERE scope = 'person'
  UNION SELECT person_id FROM follow_up)
ORDER BY id
)sql",
                       {"personKey", "displayName"});
  for (auto& person : people) {
    person["addresses"] = addressesOf(person["personKey"], connection);
  }
  return people;
}

Json whatTheUserDecided(Connection& connection) {
  return {{"ownAddresses", addressesOfUser(connection)},
          {"people", peopleNamed(connection)},
          {"decisions", decisions(connection)},
          {"actions", actions(connection)},
          {"corrections", corrections(connection)},
          {"names", names(connection)},
          {"memberships", memberships(connection)},
          {"hidden", hidden(connection)},
          {"forgotten", forgotten(connection)},
          {"followUps", followUps(connection)},
          {"captures", captures(connection)},
          {"sources", sources(connection)}};
}

void runExport(const CommandContext& context) {
  if (context.output != OutputForm::json) {
    throw CommandFailure(ExitCode::wrongCommandLine,
                         "The export is a JSON document; ask for it with 'orvan export --json > FILE'.");
  }
  Json document = {
      {"format", "orvan export"}, {"version", formatVersion}, {"exportedAt", formatInternetDateTime(context.asOf)}};
  document.update(context.session.readableStore().read(whatTheUserDecided));
  printJson(document);
}

} // namespace

void addExportCommand(CommandSet& commands) {
  commands.add({"export", "To keep it in order", "Print all that you decided as one JSON document, not encrypted",
                "orvan export --json > orvan-export.json"},
               runExport);
}

} // namespace orvan
