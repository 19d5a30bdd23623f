#include "application/corrections/change.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace orvan {
namespace {

using Row = nlohmann::json;

/// The key's columns come first.
struct TableShape {
  ChangedTable table;
  std::string_view name;
  std::size_t keyColumns;
  std::span<const std::string_view> columns;
};

constexpr std::string_view person[]{"id", "display_name", "created_at"};
constexpr std::string_view personNaming[]{"person_id", "name_rank"};
constexpr std::string_view identityMembership[]{"id", "source_identity_id", "canonical_person_id", "state", "ended_at"};
constexpr std::string_view claim[]{"id", "person_id", "kind", "created_at"};
constexpr std::string_view claimText[]{"claim_id", "statement"};
constexpr std::string_view claimEvidence[]{"id", "claim_id", "source_event_id"};
constexpr std::string_view openLoop[]{"id", "person_id", "kind", "evidence_ref", "detected_at", "state", "created_at"};
constexpr std::string_view exclusionRule[]{"id", "scope", "target_id", "created_at", "ended_at"};
constexpr std::string_view userCorrection[]{"id", "target_type", "target_id", "created_at"};
constexpr std::string_view candidate[]{"candidate_key", "person_id",         "kind",
                                       "why_now_code",  "defining_event_at", "due_at",
                                       "expires_at",    "generator_version", "created_at"};
constexpr std::string_view candidateEvidence[]{"candidate_key", "reference_kind", "reference_id"};
constexpr std::string_view disposition[]{"candidate_key", "person_id",  "state",
                                         "snoozed_until", "created_at", "updated_at"};
constexpr std::string_view followUp[]{"id",         "source_object_id", "person_id",           "due_at",      "state",
                                      "created_at", "completed_at",     "origin_operation_id", "open_loop_id"};
constexpr std::string_view sourceObject[]{"id", "kind", "created_at", "tombstoned_at"};
constexpr std::string_view captureArtifact[]{"id", "source_object_id", "user_context"};
constexpr std::string_view waitingThread[]{"thread_id", "source_identity_id", "since"};

constexpr auto shapes = std::to_array<TableShape>({
    {ChangedTable::person, "person", 1, person},
    {ChangedTable::personNaming, "person_naming", 1, personNaming},
    {ChangedTable::identityMembership, "identity_membership", 1, identityMembership},
    {ChangedTable::claim, "claim", 1, claim},
    {ChangedTable::claimText, "claim_text", 1, claimText},
    {ChangedTable::claimEvidence, "claim_evidence", 1, claimEvidence},
    {ChangedTable::openLoop, "open_loop", 1, openLoop},
    {ChangedTable::exclusionRule, "exclusion_rule", 1, exclusionRule},
    {ChangedTable::userCorrection, "user_correction", 1, userCorrection},
    {ChangedTable::candidate, "relationship_attention_candidate", 1, candidate},
    {ChangedTable::candidateEvidence, "relationship_attention_candidate_evidence", 3, candidateEvidence},
    {ChangedTable::disposition, "relationship_attention_disposition", 1, disposition},
    {ChangedTable::followUp, "follow_up", 1, followUp},
    {ChangedTable::sourceObject, "source_object", 1, sourceObject},
    {ChangedTable::captureArtifact, "capture_artifact", 1, captureArtifact},
    {ChangedTable::waitingThread, "waiting_thread", 1, waitingThread},
});

const TableShape& shapeOf(ChangedTable table) {
  return *std::ranges::find(shapes, table, &TableShape::table);
}

/// "a, b", each column followed by `ending`.
std::string joined(std::span<const std::string_view> columns, std::string_view separator, std::string_view ending) {
  std::string sql;
  for (const auto column : columns) {
    sql += sql.empty() ? "" : separator;
    sql += column;
    sql += ending;
  }
  return sql;
}

std::string whereKey(const TableShape& shape) {
  return " WHERE " + joined(shape.columns.first(shape.keyColumns), " AND ", " = ?");
}

/// Runs a statement to its end with these values, the key's last.
class ValueBinder {
 public:
  ValueBinder(Connection& connection, const std::string& sql) : query_(connection.query(sql)) {}

  void bind(const Row& value) {
    if (value.is_null()) {
      query_.bind(next_++, std::nullopt);
    } else if (value.is_number_integer()) {
      query_.bind(next_++, value.get<std::int64_t>());
    } else {
      query_.bind(next_++, std::string_view{value.get_ref<const std::string&>()});
    }
  }
  void bind(const RowKey& key) {
    for (const auto& part : key) {
      query_.bind(next_++, std::string_view{part});
    }
  }
  Query& query() noexcept { return query_; }
  void run() {
    while (query_.next()) {
    }
  }

 private:
  Query query_;
  int next_ = 1;
};

Row valueIn(const Query& row, int column) {
  if (row.holdsNull(Column{column})) {
    return nullptr;
  }
  const auto text = row.optionalText(Column{column});
  return text ? Row(std::string{*text}) : Row(row.integer(Column{column}));
}

/// The whole row; null when there is none.
Row rowUnder(const TableShape& shape, const RowKey& key, Connection& connection) {
  ValueBinder select(
      connection, "SELECT " + joined(shape.columns, ", ", "") + " FROM " + std::string{shape.name} + whereKey(shape));
  select.bind(key);
  if (!select.query().next()) {
    return nullptr;
  }
  auto row = Row::object();
  for (std::size_t column = 0; column < shape.columns.size(); ++column) {
    row[std::string{shape.columns[column]}] = valueIn(select.query(), static_cast<int>(column));
  }
  return row;
}

/// Of two rows that are there, what differs; otherwise both as they are.
Change narrowed(const Change& watched, Row after) {
  Change change{watched.table, watched.key, watched.before, std::move(after)};
  if (change.before.is_null() || change.after.is_null()) {
    return change;
  }
  for (const auto& column : shapeOf(change.table).columns) {
    const std::string name{column};
    if (change.before.at(name) == change.after.at(name)) {
      change.before.erase(name);
      change.after.erase(name);
    }
  }
  return change;
}

void remove(const Change& change, const TableShape& shape, Connection& connection) {
  ValueBinder statement(connection, "DELETE FROM " + std::string{shape.name} + whereKey(shape));
  statement.bind(change.key);
  statement.run();
}

void insert(const Change& change, const TableShape& shape, Connection& connection) {
  std::string places;
  for (std::size_t column = 0; column < shape.columns.size(); ++column) {
    places += column == 0 ? "?" : ", ?";
  }
  ValueBinder statement(connection, "INSERT INTO " + std::string{shape.name} + " (" + joined(shape.columns, ", ", "") +
                                        ") VALUES (" + places + ")");
  for (const auto column : shape.columns) {
    statement.bind(change.before.at(std::string{column}));
  }
  statement.run();
}

void update(const Change& change, const TableShape& shape, Connection& connection) {
  std::vector<std::string_view> columns;
  std::ranges::copy_if(shape.columns, std::back_inserter(columns),
                       [&](std::string_view column) { return change.before.contains(std::string{column}); });
  ValueBinder statement(
      connection, "UPDATE " + std::string{shape.name} + " SET " + joined(columns, ", ", " = ?") + whereKey(shape));
  for (const auto column : columns) {
    statement.bind(change.before.at(std::string{column}));
  }
  statement.bind(change.key);
  statement.run();
}

} // namespace

bool ChangeRecorder::isWatched(ChangedTable table, const RowKey& key) const {
  return std::ranges::any_of(watched_,
                             [&](const Change& watched) { return watched.table == table && watched.key == key; });
}

void ChangeRecorder::watchNew(ChangedTable table, RowKey key) {
  if (!isWatched(table, key)) {
    watched_.push_back({table, std::move(key), nullptr, nullptr});
  }
}

void ChangeRecorder::watch(ChangedTable table, RowKey key) {
  if (!isWatched(table, key)) {
    auto before = rowUnder(shapeOf(table), key, connection_);
    watched_.push_back({table, std::move(key), std::move(before), nullptr});
  }
}

std::vector<Change> ChangeRecorder::changes() const {
  std::vector<Change> changes;
  for (const auto& watched : watched_) {
    auto now = rowUnder(shapeOf(watched.table), watched.key, connection_);
    if (now != watched.before) {
      changes.push_back(narrowed(watched, std::move(now)));
    }
  }
  return changes;
}

bool isAsLeft(const Change& change, Connection& connection) {
  const auto now = rowUnder(shapeOf(change.table), change.key, connection);
  if (now.is_null() || change.after.is_null()) {
    return now == change.after;
  }
  return std::ranges::all_of(change.after.items(),
                             [&](const auto& column) { return now.at(column.key()) == column.value(); });
}

void takeBack(const Change& change, Connection& connection) {
  const auto& shape = shapeOf(change.table);
  if (change.before.is_null()) {
    remove(change, shape, connection);
  } else if (change.after.is_null()) {
    insert(change, shape, connection);
  } else {
    update(change, shape, connection);
  }
}

nlohmann::json toJson(const Change& change) {
  return {
      {"table", shapeOf(change.table).name}, {"key", change.key}, {"before", change.before}, {"after", change.after}};
}

Change changeIn(const nlohmann::json& json) {
  const auto name = json.at("table").get<std::string>();
  const auto shape = std::ranges::find(shapes, name, &TableShape::name);
  auto key = json.at("key").get<RowKey>();
  if (shape == shapes.end() || key.size() != shape->keyColumns) {
    throw std::out_of_range("no table whose rows actions change");
  }
  return {shape->table, std::move(key), json.at("before"), json.at("after")};
}

} // namespace orvan
