#include "application/corrections/hiding.h"

#include <algorithm>
#include <array>

#include "OrvanPlatform/internet_date_time.h"
#include "application/corrections/waiting_again.h"

namespace orvan {
namespace {

constexpr std::array scopes{HiddenScope::person, HiddenScope::conversation, HiddenScope::mail, HiddenScope::account};

/// What the store calls a scope.
std::string_view storedScope(HiddenScope scope) noexcept {
  switch (scope) {
    case HiddenScope::person:
      return "person";
    case HiddenScope::conversation:
      return "thread";
    case HiddenScope::mail:
      return "interaction";
    case HiddenScope::account:
      return "source_account";
  }
  return {};
}

/// A person of a conversation is one of those who wrote in it, if anybody did.
constexpr const char* selectHidden = R"sql(
SELECT rule.id, rule.scope, rule.target_id, rule.created_at,
       CASE rule.scope
         WHEN 'person' THEN whom.display_name
         WHEN 'source_account' THEN (SELECT source_type FROM source_account WHERE id = rule.target_id)
         ELSE (SELECT subject FROM thread_text WHERE thread_id = rule.thread_id)
       END AS name,
       whom.id, whom.display_name
FROM (
  SELECT r.id, r.scope, r.target_id, r.created_at,
         CASE r.scope WHEN 'thread' THEN r.target_id WHEN 'interaction' THEN mail.thread_id END AS thread_id,
         CASE r.scope
           WHEN 'person' THEN r.target_id
           ELSE (
             SELECT im.canonical_person_id
             FROM identity_membership im
             WHERE im.ended_at IS NULL AND im.source_identity_id = CASE r.scope
               WHEN 'interaction' THEN mail.source_identity_id
               WHEN 'thread' THEN (SELECT min(tp.source_identity_id) FROM thread_participant tp
                                   WHERE tp.thread_id = r.target_id)
             END
             LIMIT 1)
         END AS person_id
  FROM exclusion_rule r
  LEFT JOIN interaction mail ON r.scope = 'interaction' AND mail.id = r.target_id
  WHERE r.ended_at IS NULL
) rule
LEFT JOIN person whom ON whom.id = rule.person_id
)sql";

std::optional<std::string> textIn(const Query& row, int column) {
  const auto text = row.optionalText(Column{column});
  return text ? std::optional<std::string>{*text} : std::nullopt;
}

/// Nothing for a rule of a kind that the user has no word for.
std::optional<HiddenThing> thingIn(const Query& row) {
  const auto scope = std::ranges::find(scopes, row.text(Column{1}), storedScope);
  if (scope == scopes.end()) {
    return std::nullopt;
  }
  return HiddenThing{std::string{row.text(Column{0})}, *scope,         std::string{row.text(Column{2})},
                     textIn(row, 4).value_or(""),      textIn(row, 5), textIn(row, 6),
                     std::string{row.text(Column{3})}};
}

} // namespace

std::string_view caseName(HiddenScope scope) noexcept {
  switch (scope) {
    case HiddenScope::person:
      return "person";
    case HiddenScope::conversation:
      return "conversation";
    case HiddenScope::mail:
      return "mail";
    case HiddenScope::account:
      return "account";
  }
  return "unknown";
}

std::vector<HiddenThing> hiddenThings(Connection& connection) {
  std::vector<HiddenThing> things;
  auto rows = connection.query(std::string{selectHidden} + "ORDER BY rule.created_at DESC, rule.id");
  while (rows.next()) {
    if (auto thing = thingIn(rows)) {
      things.push_back(*std::move(thing));
    }
  }
  return things;
}

std::optional<HiddenThing> hiddenThing(HiddenScope scope, std::string_view targetID, Connection& connection) {
  auto rows = connection.query(std::string{selectHidden} + "WHERE rule.scope = ? AND rule.target_id = ? LIMIT 1",
                               storedScope(scope), targetID);
  return rows.next() ? thingIn(rows) : std::nullopt;
}

bool isPersonHidden(std::string_view personID, Connection& connection) {
  return connection
      .fetchOptionalInteger(
          "SELECT 1 FROM exclusion_rule WHERE scope = 'person' AND target_id = ? AND ended_at IS NULL", personID)
      .has_value();
}

void hide(HiddenScope scope, std::string_view targetID, Instant now, ChangeRecorder& recorder, Connection& connection) {
  const auto key = connection.fetchOptionalText("SELECT 'h-' || lower(hex(randomblob(5)))").value();
  recorder.watch(ChangedTable::exclusionRule, {key});
  connection.execute("INSERT INTO exclusion_rule (id, scope, target_id, created_at) VALUES (?, ?, ?, ?)", key,
                     storedScope(scope), targetID, formatInternetDateTime(now));
  waitAgainAsRulesSay(recorder.changes(), connection);
}

void unhide(const HiddenThing& thing, Instant now, ChangeRecorder& recorder, Connection& connection) {
  recorder.watch(ChangedTable::exclusionRule, {thing.key});
  connection.execute("UPDATE exclusion_rule SET ended_at = ? WHERE id = ?", formatInternetDateTime(now), thing.key);
  waitAgainAsRulesSay(recorder.changes(), connection);
}

} // namespace orvan
