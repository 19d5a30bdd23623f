#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// The tables whose rows the user's actions change.
enum class ChangedTable {
  person,
  personNaming,
  identityMembership,
  claim,
  claimText,
  claimEvidence,
  openLoop,
  exclusionRule,
  userCorrection,
  candidate,
  candidateEvidence,
  disposition,
  followUp,
  sourceObject,
  captureArtifact,
  waitingThread,
};

/// The values of a row's key columns, in the table's order.
using RowKey = std::vector<std::string>;

/// What an action did to one row. `before` and `after` are objects of column names and values, null where there was no
/// row. Of a row that was there before and after they hold the columns that differ: what else becomes of the row stands
/// in nobody's way.
struct Change {
  ChangedTable table;
  RowKey key;
  nlohmann::json before;
  nlohmann::json after;

  bool operator==(const Change&) const = default;
};

/// Finds out what an action does: watch() its rows, run its statements, take the changes(). Within one transaction of
/// the caller's, which must outlive the recorder. Throws StoreError.
class ChangeRecorder {
 public:
  explicit ChangeRecorder(Connection& connection) : connection_(connection) {}

  /// Remembers the row as it is now, or that there is none. Of several times the first counts.
  void watch(ChangedTable table, RowKey key);

  /// The same for a row that the action has made, unless it is watched already.
  void watchNew(ChangedTable table, RowKey key);

  /// What has become of the watched rows, in the order in which they were first watched. Rows that are as they were are
  /// left out.
  std::vector<Change> changes() const;

 private:
  bool isWatched(ChangedTable table, const RowKey& key) const;

  Connection& connection_;
  /// With the whole row in `before`.
  std::vector<Change> watched_;
};

/// Whether the row is as the change left it.
bool isAsLeft(const Change& change, Connection& connection);

/// Makes the row as it was before the change. It must be as the change left it.
void takeBack(const Change& change, Connection& connection);

nlohmann::json toJson(const Change& change);
/// Throws nlohmann::json::exception, or std::out_of_range, for what toJson() did not make.
Change changeIn(const nlohmann::json& json);

} // namespace orvan
