#include "OrvanSpineCore/source_eligibility.h"

#include <gtest/gtest.h>

#include "OrvanPlatform/internet_date_time.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using Policy = SourceEligibility::Policy;

class SourceEligibilityTest : public testing::Test {
 protected:
  SourceEligibilityTest() {
    store.addPerson("ana");
    store.add(TestInteraction{.id = "i", .at = "2026-03-01T10:00:00Z", .thread = "t"});
  }

  bool letsThrough(Policy policy) {
    const auto predicate = SourceEligibility::interactionPredicateSQL(policy, "i.id", "i.thread_id",
                                                                      "i.source_event_id", "'ana'", store.connection());
    return store.connection().fetchOptionalInteger("SELECT 1 FROM interaction i WHERE " + predicate).has_value();
  }

  TestStore store;
};

TEST_F(SourceEligibilityTest, HidesWhatARuleOrATombstoneNames) {
  enum class Reach { nobody, showable, notDeletedToo };
  const auto* const rule = "INSERT INTO exclusion_rule (id, created_at, scope, target_id) VALUES ('r', '', ";
  const auto* const endedRule =
      "INSERT INTO exclusion_rule (id, created_at, ended_at, scope, target_id) VALUES ('r', '', '2026-01-01', ";
  const auto* const tombstone = "INSERT INTO deletion_tombstone (deleted_at, object_type, object_id) VALUES ('', ";
  struct Case {
    const char* start;
    const char* rest;
    Reach hiddenFrom;
  };
  for (const auto& [start, rest, hiddenFrom] :
       {Case{rule, "'person', 'ana')", Reach::showable}, Case{rule, "'thread', 't')", Reach::showable},
        Case{rule, "'interaction', 'i')", Reach::showable}, Case{rule, "'source_account', 'mail')", Reach::showable},
        Case{rule, "'source_account', 'calendar')", Reach::nobody}, Case{rule, "'thread', 'i')", Reach::nobody},
        Case{endedRule, "'person', 'ana')", Reach::nobody}, Case{endedRule, "'source_account', 'mail')", Reach::nobody},
        Case{tombstone, "'person', 'ana')", Reach::notDeletedToo},
        Case{tombstone, "'thread', 't')", Reach::notDeletedToo},
        Case{tombstone, "'interaction', 'i')", Reach::notDeletedToo},
        Case{tombstone, "'source_event', 'event-i')", Reach::notDeletedToo},
        Case{tombstone, "'source_event', 'i')", Reach::nobody},
        Case{tombstone, "'source_object', 'i')", Reach::nobody}}) {
    store.run("SAVEPOINT before");
    store.run(std::string{start} + rest);
    EXPECT_EQ(letsThrough(Policy::showable), hiddenFrom == Reach::nobody) << start << rest;
    EXPECT_EQ(letsThrough(Policy::notDeleted), hiddenFrom != Reach::notDeletedToo) << start << rest;
    EXPECT_TRUE(letsThrough(Policy::everything)) << start << rest;
    store.run("ROLLBACK TO before");
    store.run("RELEASE before");
  }
}

TEST_F(SourceEligibilityTest, InteractionWithoutAThreadIsStillShown) {
  store.run("UPDATE interaction SET thread_id = NULL");
  store.run("INSERT INTO exclusion_rule (id, created_at, scope, target_id) VALUES ('r', '', 'thread', 'other')");
  store.run("INSERT INTO deletion_tombstone VALUES ('other', 'thread', '')");
  EXPECT_TRUE(letsThrough(Policy::showable));
}

TEST_F(SourceEligibilityTest, AsOfTakesInItsWholeSecond) {
  const auto predicate = SourceEligibility::occurredAtAsOfPredicate(
      *parseInternetDateTime("2026-03-01T10:00:00Z") + std::chrono::milliseconds{999}, "i.occurred_at");
  EXPECT_EQ(predicate.sql, "i.occurred_at <= ?");
  EXPECT_EQ(predicate.argument, "2026-03-01T10:00:00Z");
}

TEST_F(SourceEligibilityTest, SourceObjectIsGoneWhenMarkedOrNamedByATombstone) {
  store.run(
      "INSERT INTO source_object VALUES ('kept', '', '', NULL), ('marked', '', '', '2026'), ('named', '', '', NULL)");
  store.run("INSERT INTO deletion_tombstone VALUES ('named', 'source_object', ''), ('kept', 'thread', '')");
  auto rows =
      store.connection().query("SELECT id FROM source_object so WHERE " +
                               SourceEligibility::sourceObjectTombstonedSQL("so", store.connection()) + " ORDER BY id");
  std::vector<std::string> gone;
  while (rows.next()) {
    gone.emplace_back(rows.text(Column{0}));
  }
  EXPECT_EQ(gone, (std::vector<std::string>{"marked", "named"}));
}

} // namespace
} // namespace orvan
