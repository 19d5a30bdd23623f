#include "application/corrections/waiting_again.h"

#include <vector>

#include "application/import/ledger/waiting_threads.h"

namespace orvan {
namespace {

/// The thread of the mail that a rule is about, in force or not, as long as there is anything that tells.
std::optional<std::string> threadOfMailIn(const Change& change, Connection& connection) {
  const auto target = [&]() -> std::optional<std::string> {
    for (const auto& row : {change.before, change.after}) {
      if (row.is_object() && row.contains("target_id")) {
        return row.at("target_id").get<std::string>();
      }
    }
    return connection.fetchOptionalText("SELECT target_id FROM exclusion_rule WHERE id = ?", change.key.front());
  }();
  return target ? connection.fetchOptionalText("SELECT thread_id FROM interaction WHERE id = ?", *target)
                : std::nullopt;
}

} // namespace

void waitAgainAsRulesSay(std::span<const Change> changes, Connection& connection) {
  std::vector<std::string> threadIDs;
  for (const auto& change : changes) {
    if (change.table == ChangedTable::exclusionRule) {
      if (auto threadID = threadOfMailIn(change, connection)) {
        threadIDs.push_back(*std::move(threadID));
      }
    }
  }
  refreshWaitingThreads(threadIDs, connection);
}

} // namespace orvan
