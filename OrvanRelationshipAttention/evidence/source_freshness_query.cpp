#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan::internal {
namespace {

constexpr std::string_view accountsUntilEligibility = R"sql(SELECT DISTINCT se.source_account_id
FROM identity_membership im
JOIN interaction_participant ip ON ip.source_identity_id = im.source_identity_id
JOIN interaction i ON i.id = ip.interaction_id
JOIN source_event se ON se.id = i.source_event_id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  AND im.canonical_person_id = ?
  AND )sql";

constexpr std::string_view freshnessUntilAccounts =
    "SELECT source_account_id, operation, freshness_state, last_successful_sync_at\n"
    "FROM source_progress_projection\n"
    "WHERE source_account_id IN (";

constexpr std::string_view freshnessUntilEnd = ")\nORDER BY source_account_id, operation";

std::vector<std::string> fetchAccounts(std::string_view personKey, Connection& connection) {
  std::string statement{accountsUntilEligibility};
  statement += SourceEligibility::interactionPredicateSQL(SourceEligibility::Policy::showable, "i.id", "i.thread_id",
                                                          "i.source_event_id", "im.canonical_person_id", connection);
  std::vector<std::string> accounts;
  auto rows = connection.query(statement, personKey);
  const Column account{0};
  while (rows.next()) {
    if (rows.holdsNull(account) || rows.optionalText(account)) {
      accounts.emplace_back(rows.text(account));
    }
  }
  return accounts;
}

std::string freshnessStatement(std::size_t accounts) {
  std::string statement{freshnessUntilAccounts};
  for (std::size_t account = 0; account < accounts; ++account) {
    statement += account == 0 ? "?" : ", ?";
  }
  statement += freshnessUntilEnd;
  return statement;
}

/// Callers know three states; whatever else a source wrote tells them nothing.
std::string normalizedState(std::string_view state) {
  return std::string{state == "current" || state == "stale" ? state : "unknown"};
}

} // namespace

std::vector<SourceFreshnessEvidence> EvidenceQueries::fetchSourceFreshness(std::string_view personKey,
                                                                           Connection& connection) {
  const auto accounts = fetchAccounts(personKey, connection);
  std::vector<SourceFreshnessEvidence> freshness;
  if (accounts.empty()) {
    return freshness;
  }
  auto rows = connection.queryWithTexts(freshnessStatement(accounts.size()), accounts);
  const Column accountColumn = rows.column("source_account_id");
  const Column operationColumn = rows.column("operation");
  const Column stateColumn = rows.column("freshness_state");
  const Column syncedAtColumn = rows.column("last_successful_sync_at");
  while (rows.next()) {
    const auto account = rows.optionalText(accountColumn);
    const auto operation = rows.optionalText(operationColumn);
    const auto state = rows.optionalText(stateColumn);
    if (account && operation && state) {
      const auto syncedAt = rows.optionalText(syncedAtColumn);
      freshness.emplace_back(std::string{*account}, std::string{*operation}, normalizedState(*state),
                             syncedAt ? std::optional<std::string>{*syncedAt} : std::nullopt);
    }
  }
  return freshness;
}

} // namespace orvan::internal
