#include "application/import/ledger/source_progress.h"

#include <optional>
#include <utility>

#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

/// Short, because every source event names its account.
constexpr std::size_t accountLength = 8;

/// The oldest one that the operation reported on. Accounts that other programs keep are left to them.
std::optional<std::string> accountOf(std::string_view operation, Connection& connection) {
  return connection.fetchOptionalText(R"sql(
SELECT account.id
FROM source_progress_projection progress
JOIN source_account account ON account.id = progress.source_account_id
WHERE progress.operation = ?
ORDER BY account.created_at, account.id
LIMIT 1
)sql",
                                      operation);
}

SourceAccount accountFor(std::string sourceType, std::string_view ownAddress, Connection& connection) {
  auto operation = "import_" + sourceType;
  auto id = accountOf(operation, connection);
  if (!id) {
    id = sourceType + "-" + stableID(ownAddress, accountLength);
  }
  return {*std::move(id), std::move(sourceType), std::move(operation)};
}

} // namespace

SourceAccount mailAccountOf(std::string_view ownAddress, Connection& connection) {
  return accountFor("mail", ownAddress, connection);
}

SourceAccount calendarAccountOf(std::string_view ownAddress, Connection& connection) {
  return accountFor("calendar", ownAddress, connection);
}

void recordImportStarted(const SourceAccount& account, std::string_view now, Connection& connection) {
  connection.execute("INSERT OR IGNORE INTO source_account (id, source_type, created_at) VALUES (?, ?, ?)", account.id,
                     account.sourceType, now);
  connection.execute(R"sql(
INSERT INTO source_progress_projection (source_account_id, operation, freshness_state, last_successful_sync_at)
VALUES (?, ?, 'stale', NULL)
ON CONFLICT(source_account_id, operation) DO UPDATE SET freshness_state = 'stale'
)sql",
                     account.id, account.operation);
}

void recordImportSucceeded(const SourceAccount& account, std::string_view now, Connection& connection) {
  connection.execute(
      "UPDATE source_progress_projection SET freshness_state = 'current', last_successful_sync_at = ? "
      "WHERE source_account_id = ? AND operation = ?",
      now, account.id, account.operation);
}

} // namespace orvan
