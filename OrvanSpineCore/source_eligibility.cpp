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

/// What there is that can keep an interaction from being used. A store without any, the usual one, then pays for no
/// probe; looking costs one small statement.
struct Restrictions {
  bool tombstones = false;
  bool interactionRules = false;
  bool threadRules = false;
  bool personRules = false;
  bool accountRules = false;

  static Restrictions in(Connection& connection) {
    auto row = connection.query(R"sql(
SELECT EXISTS (SELECT 1 FROM deletion_tombstone WHERE object_type <> 'identity'),
       EXISTS (SELECT 1 FROM exclusion_rule WHERE scope = 'interaction' AND ended_at IS NULL),
       EXISTS (SELECT 1 FROM exclusion_rule WHERE scope = 'thread' AND ended_at IS NULL),
       EXISTS (SELECT 1 FROM exclusion_rule WHERE scope = 'person' AND ended_at IS NULL),
       EXISTS (SELECT 1 FROM exclusion_rule WHERE scope = 'source_account' AND ended_at IS NULL)
)sql");
    row.next();
    const auto is = [&row](int column) { return row.integer(Column{column}) != 0; };
    return {is(0), is(1), is(2), is(3), is(4)};
  }
};

class Conjunction {
 public:
  void add(const std::string& term) { terms_ += (terms_.empty() ? "" : "\n  AND ") + term; }
  std::string sql() const { return terms_.empty() ? "1" : "(" + terms_ + ")"; }

 private:
  std::string terms_;
};

} // namespace

std::string SourceEligibility::interactionPredicateSQL(Policy policy, std::string_view interactionIDColumn,
                                                       std::string_view threadIDColumn,
                                                       std::string_view sourceEventIDColumn,
                                                       std::string_view personIDColumn, Connection& connection) {
  if (policy == Policy::everything) {
    return "1";
  }
  const auto there = Restrictions::in(connection);
  Conjunction terms;
  if (there.tombstones) {
    terms.add(notDeleted("interaction", interactionIDColumn));
    terms.add(notDeleted("thread", threadIDColumn));
    terms.add(notDeleted("source_event", sourceEventIDColumn));
    terms.add(notDeleted("person", personIDColumn));
  }
  if (policy == Policy::showable && there.interactionRules) {
    terms.add(notExcluded("interaction", interactionIDColumn));
  }
  if (policy == Policy::showable && there.threadRules) {
    terms.add(notExcluded("thread", threadIDColumn));
  }
  if (policy == Policy::showable && there.personRules) {
    terms.add(notExcluded("person", personIDColumn));
  }
  if (policy == Policy::showable && there.accountRules) {
    terms.add(accountNotExcluded(sourceEventIDColumn));
  }
  return terms.sql();
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
