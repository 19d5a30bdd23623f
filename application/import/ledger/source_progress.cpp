#include "application/import/ledger/source_progress.h"

#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

constexpr std::size_t accountLength = 8;

/// Short, because every source event names its account.
std::string accountID(std::string_view sourceType, std::string_view ownAddress) {
  return std::string{sourceType} + "-" + stableID(ownAddress, accountLength);
}

} // namespace

SourceAccount mailAccountOf(std::string_view ownAddress) {
  return {accountID("mail", ownAddress), "mail", "import_mail"};
}

SourceAccount calendarAccountOf(std::string_view ownAddress) {
  return {accountID("calendar", ownAddress), "calendar", "import_calendar"};
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
