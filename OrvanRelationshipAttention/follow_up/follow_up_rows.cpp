#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"

#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan::internal {
namespace {

/// The columns of every statement below, in their order.
struct FollowUpColumns {
  Column id{0};
  Column sourceObjectID{1};
  Column personID{2};
  Column dueAt{3};
  Column state{4};
  Column completedAt{5};
};

PersistedFollowUp decode(const Query& row) {
  constexpr FollowUpColumns columns;
  const auto completedAt = row.optionalText(columns.completedAt);
  return PersistedFollowUp{
      std::string{row.text(columns.id)},       std::string{row.text(columns.sourceObjectID)},
      std::string{row.text(columns.personID)}, std::string{row.text(columns.dueAt)},
      std::string{row.text(columns.state)},    completedAt ? std::optional<std::string>{*completedAt} : std::nullopt};
}

std::optional<PersistedFollowUp> first(Query rows) {
  return rows.next() ? std::optional{decode(rows)} : std::nullopt;
}

std::vector<PersistedFollowUp> all(Query rows) {
  std::vector<PersistedFollowUp> followUps;
  while (rows.next()) {
    followUps.push_back(decode(rows));
  }
  return followUps;
}

/// The statement for live follow-ups, with a condition to narrow it.
std::string liveFollowUpsSQL(Connection& connection, std::string_view condition) {
  std::string sql = R"sql(
    SELECT f.id, f.source_object_id, f.person_id, f.due_at, f.state, f.completed_at
    FROM follow_up f
    JOIN source_object s ON s.id = f.source_object_id
    WHERE f.state = 'scheduled' AND NOT ()sql";
  sql += SourceEligibility::sourceObjectTombstonedSQL("s", connection);
  sql += ")";
  sql += condition;
  return sql;
}

} // namespace

std::optional<PersistedFollowUp> loadFollowUp(Connection& connection, std::string_view id) {
  return first(connection.query(R"sql(
    SELECT id, source_object_id, person_id, due_at, state, completed_at
    FROM follow_up
    WHERE id = ?
  )sql",
                                id));
}

std::optional<PersistedFollowUp> loadFollowUp(Connection& connection, std::string_view sourceObjectID,
                                              std::string_view personID) {
  return first(connection.query(R"sql(
    SELECT id, source_object_id, person_id, due_at, state, completed_at
    FROM follow_up
    WHERE source_object_id = ? AND person_id = ?
    ORDER BY created_at DESC, id DESC
    LIMIT 1
  )sql",
                                sourceObjectID, personID));
}

std::vector<PersistedFollowUp> scheduledFollowUps(Connection& connection, std::string_view sourceObjectID) {
  return all(connection.query(R"sql(
    SELECT id, source_object_id, person_id, due_at, state, completed_at
    FROM follow_up
    WHERE source_object_id = ? AND state = 'scheduled'
    ORDER BY person_id
  )sql",
                              sourceObjectID));
}

std::vector<PersistedFollowUp> liveFollowUps(Connection& connection) {
  return all(connection.query(liveFollowUpsSQL(connection, "")));
}

std::optional<PersistedFollowUp> liveFollowUp(Connection& connection, std::string_view id) {
  return first(connection.query(liveFollowUpsSQL(connection, " AND f.id = ?"), id));
}

std::vector<PersistedFollowUp> liveFollowUps(Connection& connection, std::string_view sourceObjectID,
                                             std::string_view personID) {
  return all(connection.query(liveFollowUpsSQL(connection, " AND f.source_object_id = ? AND f.person_id = ?"),
                              sourceObjectID, personID));
}

std::string storedOpenLoopID(Connection& connection, std::string_view followUpID) {
  auto stored = connection.fetchOptionalText("SELECT open_loop_id FROM follow_up WHERE id = ?", followUpID);
  return stored ? *std::move(stored) : followUpOpenLoopID(followUpID);
}

std::optional<std::string> openLoopDetectedAt(Connection& connection, std::string_view openLoopID) {
  return connection.fetchOptionalText("SELECT detected_at FROM open_loop WHERE id = ?", openLoopID);
}

} // namespace orvan::internal
