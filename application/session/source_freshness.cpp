#include "application/session/source_freshness.h"

#include <string>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

/// The rows to be changed, with what they should say. A success that was never has an age of NULL, which is not less
/// than anything.
constexpr const char* outdatedRows = R"sql(
SELECT source_account_id, operation, wanted
FROM (
  SELECT progress.source_account_id, progress.operation, progress.freshness_state AS stored,
         CASE WHEN source.last_fault IS NULL
                AND strftime('%s', ?1) - strftime('%s', progress.last_successful_sync_at)
                    < COALESCE(source.usual_interval_seconds, 86400)
              THEN 'current' ELSE 'stale' END AS wanted
  FROM source_progress_projection progress
  LEFT JOIN remembered_source source ON source.source_account_id = progress.source_account_id
  WHERE substr(progress.operation, 1, 7) = 'import_' OR substr(progress.operation, 1, 8) = 'refresh_'
)
WHERE stored <> wanted
)sql";

} // namespace

bool isFreshnessOutdated(Instant asOf, Connection& connection) {
  return connection.query(outdatedRows, formatInternetDateTime(asOf)).next();
}

void bringFreshnessUpToDate(Instant asOf, Connection& connection) {
  const auto statement = "WITH outdated AS (" + std::string{outdatedRows} + R"sql()
UPDATE source_progress_projection SET freshness_state = outdated.wanted
FROM outdated
WHERE outdated.source_account_id = source_progress_projection.source_account_id
  AND outdated.operation = source_progress_projection.operation
)sql";
  connection.execute(statement, formatInternetDateTime(asOf));
}

} // namespace orvan
