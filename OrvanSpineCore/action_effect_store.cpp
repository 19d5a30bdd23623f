#include "OrvanSpineCore/action_effect_store.h"

#include <vector>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

/// The notifications that undone links still have to see withdrawn.
std::vector<std::string> owedWithdrawals(Connection& connection) {
  std::vector<std::string> keys;
  auto rows = connection.query(R"sql(
    SELECT DISTINCT notification_key
    FROM post_commit_obligation
    WHERE kind = 'undone_unlink' AND settled_at IS NULL
  )sql");
  const Column key = rows.column("notification_key");
  while (rows.next()) {
    keys.emplace_back(rows.text(key));
  }
  return keys;
}

} // namespace

std::string ActionEffectStore::stamp(Instant moment) {
  return formatInternetDateTime(moment);
}

std::optional<Instant> ActionEffectStore::parse(std::string_view text) noexcept {
  return parseInternetDateTime(text);
}

void ActionEffectStore::settlePostCommit(Connection& connection, const Uuid& operationID, Instant at) {
  connection.execute(R"sql(
    UPDATE post_commit_obligation
    SET settled_at = ?
    WHERE operation_id = ? AND kind <> 'undone_unlink' AND settled_at IS NULL
  )sql",
                     stamp(at), operationID.text());
}

void ActionEffectStore::settleUndoneUnlinkObligations(Connection& connection,
                                                      const std::unordered_set<std::string>& pendingKeys, Instant now) {
  const std::string settledAt = stamp(now);
  for (const auto& key : owedWithdrawals(connection)) {
    if (!pendingKeys.contains(key)) {
      connection.execute(R"sql(
        UPDATE post_commit_obligation
        SET settled_at = ?
        WHERE kind = 'undone_unlink' AND notification_key = ? AND settled_at IS NULL
      )sql",
                         settledAt, key);
    }
  }
}

} // namespace orvan
