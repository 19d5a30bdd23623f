#include <gmock/gmock.h>

#include <span>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "tests/support/connection_watch.h"
#include "tests/support/test_store.h"

namespace orvan::internal {
namespace {

using testing::Contains;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

class QueryPlans : public testing::Test {
 protected:
  QueryPlans() { store.addPerson("ana"); }

  void restrictEverything() {
    store.run("INSERT INTO deletion_tombstone VALUES ('other', 'thread', '')");
    store.run(
        "INSERT INTO exclusion_rule VALUES ('1', 'interaction', 'other', '', NULL), ('2', 'thread', 'other', '', "
        "NULL), ('3', 'person', 'other', '', NULL), ('4', 'source_account', 'other', '', NULL)");
  }

  /// The statements behind a bundle, as SQLite gets them, without the looks for restrictions.
  Texts statements() {
    const StatementLog log(store.connection().handle());
    const EvidenceQueries queries(AttentionEvidenceCompilerOptions::defaults);
    const Instant asOf = *parseInternetDateTime("2026-03-05T12:00:00Z");
    auto& connection = store.connection();
    queries.fetchOpenThreads("ana", asOf, connection);
    queries.fetchUpcomingInteractions("ana", asOf, connection);
    EvidenceQueries::fetchInteractionTimestamps("ana", connection);
    queries.fetchCommitments("ana", connection);
    EvidenceQueries::fetchSourceFreshness("ana", connection);
    queries.fetchUserCorrections("ana", asOf, connection);
    auto texts = log.texts();
    std::erase_if(texts, [](const std::string& text) { return text.contains("SELECT EXISTS"); });
    return texts;
  }

  Texts planOf(const std::string& statement) {
    Texts steps;
    auto rows = store.connection().query("EXPLAIN QUERY PLAN " + statement);
    const Column detail = rows.column("detail");
    while (rows.next()) {
      steps.emplace_back(rows.text(detail));
    }
    return steps;
  }

  TestStore store;
};

TEST_F(QueryPlans, LookEverythingUpAndWalkNoTable) {
  store.add(TestInteraction{.id = "i1", .at = "2026-03-01T10:00:00Z"});
  store.add(TestInteraction{.id = "i2", .at = "2026-03-02T10:00:00Z", .account = "calendar"});
  restrictEverything();
  const auto texts = statements();
  ASSERT_EQ(texts.size(), 9U);
  EXPECT_THAT(texts, Contains(HasSubstr("source_account_id IN (?, ?)\n"))) << "one placeholder for each account";
  for (const auto& text : texts) {
    for (const auto& step : planOf(text)) {
      EXPECT_FALSE(step.starts_with("SCAN")) << step << " in\n" << text;
      EXPECT_FALSE(step.contains("AUTOMATIC")) << step << " in\n" << text;
    }
  }
}

TEST_F(QueryPlans, AnswerEligibilityProbesAndCorrectionsFromAnIndex) {
  EXPECT_THAT(statements().at(2), testing::Not(HasSubstr("eligibility"))) << "a store without restrictions";
  restrictEverything();
  const auto texts = statements();
  const auto history = planOf(texts.at(2));
  const std::string tombstone = "SEARCH eligibility_tombstone USING PRIMARY KEY ";
  const std::string rule = "SEARCH eligibility_rule USING COVERING INDEX exclusion_rule_by_target ";
  EXPECT_THAT(history, Contains(tombstone + "(object_id=? AND object_type=?)").Times(4));
  EXPECT_THAT(history, Contains(rule + "(scope=? AND target_id=? AND ended_at=?)").Times(3));
  EXPECT_THAT(history, Contains(rule + "(scope=?)").Times(1)) << "rules about accounts come before the source event";
  for (const auto& correction : std::span(texts).last(3)) {
    EXPECT_THAT(planOf(correction), Contains(testing::EndsWith("USING COVERING INDEX user_correction_by_target "
                                                               "(target_id=? AND target_type=?)")))
        << correction;
  }
}

TEST_F(QueryPlans, PersonSeenInNoAccountCostsNoSecondFreshnessStatement) {
  const auto texts = statements();
  EXPECT_EQ(texts.size(), 8U);
  EXPECT_THAT(texts, testing::Not(Contains(HasSubstr("source_progress_projection"))));
}

} // namespace
} // namespace orvan::internal
