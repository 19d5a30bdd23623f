#include "OrvanSpineCore/source_eligibility.h"

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

// Each probe is a term of its own, answered from one entry of an index. Terms joined by OR within one NOT EXISTS take
// more than twice as long, and NOT IN would drop the rows whose thread is NULL.

std::string notExcluded(std::string_view scope, std::string_view column) {
  std::string sql = R"(NOT EXISTS (
    SELECT 1 FROM exclusion_rule eligibility_rule
    WHERE eligibility_rule.scope = ')";
  sql += scope;
  sql += R"(' AND eligibility_rule.target_id = )";
  sql += column;
  sql += R"( AND eligibility_rule.ended_at IS NULL
  ))";
  return sql;
}

/// The rules come first: while no account is excluded, no source event is looked up.
std::string accountNotExcluded(std::string_view sourceEventIDColumn) {
  std::string sql = R"(NOT EXISTS (
    SELECT 1 FROM exclusion_rule eligibility_rule
    CROSS JOIN source_event eligibility_event
    WHERE eligibility_rule.scope = 'source_account' AND eligibility_rule.ended_at IS NULL
      AND eligibility_event.id = )";
  sql += sourceEventIDColumn;
  sql += R"(
      AND eligibility_event.source_account_id = eligibility_rule.target_id
  ))";
  return sql;
}

std::string notDeleted(std::string_view objectType, std::string_view column) {
  std::string sql = R"(NOT EXISTS (
    SELECT 1 FROM deletion_tombstone eligibility_tombstone
    WHERE eligibility_tombstone.object_id = )";
  sql += column;
  sql += R"( AND eligibility_tombstone.object_type = ')";
  sql += objectType;
  sql += R"('
  ))";
  return sql;
}

} // namespace

std::string SourceEligibility::interactionPredicateSQL(Policy policy, std::string_view interactionIDColumn,
                                                       std::string_view threadIDColumn,
                                                       std::string_view sourceEventIDColumn,
                                                       std::string_view personIDColumn, Connection& /*connection*/) {
  if (policy == Policy::everything) {
    return "1";
  }
  std::string sql = "(" + notDeleted("interaction", interactionIDColumn);
  sql += "\n  AND " + notDeleted("thread", threadIDColumn);
  sql += "\n  AND " + notDeleted("source_event", sourceEventIDColumn);
  sql += "\n  AND " + notDeleted("person", personIDColumn);
  if (policy == Policy::showable) {
    sql += "\n  AND " + notExcluded("interaction", interactionIDColumn);
    sql += "\n  AND " + notExcluded("thread", threadIDColumn);
    sql += "\n  AND " + notExcluded("person", personIDColumn);
    sql += "\n  AND " + accountNotExcluded(sourceEventIDColumn);
  }
  sql += ")";
  return sql;
}

SourceEligibility::AsOfPredicate SourceEligibility::occurredAtAsOfPredicate(Instant asOf,
                                                                            std::string_view occurredAtColumn) {
  return {std::string{occurredAtColumn} + " <= ?", formatInternetDateTime(asOf)};
}

std::string SourceEligibility::sourceObjectTombstonedSQL(std::string_view objectAlias, Connection& /*connection*/) {
  const std::string alias{objectAlias};
  return "(" + alias + R"(.tombstoned_at IS NOT NULL OR EXISTS (
    SELECT 1 FROM deletion_tombstone object_tombstone
    WHERE object_tombstone.object_id = )" +
         alias + R"(.id AND object_tombstone.object_type = 'source_object'
  )))";
}

} // namespace orvan
