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
  for (const auto& [row, hiddenFrom] :
       {std::pair{"exclusion_rule VALUES ('r', 'person', 'ana', '', NULL)", Reach::showable},
        {"exclusion_rule VALUES ('r', 'thread', 't', '', NULL)", Reach::showable},
        {"exclusion_rule VALUES ('r', 'interaction', 'i', '', NULL)", Reach::showable},
        {"exclusion_rule VALUES ('r', 'source_account', 'mail', '', NULL)", Reach::showable},
        {"exclusion_rule VALUES ('r', 'source_account', 'calendar', '', NULL)", Reach::nobody},
        {"exclusion_rule VALUES ('r', 'thread', 'i', '', NULL)", Reach::nobody},
        {"exclusion_rule VALUES ('ended', 'person', 'ana', '', '2026-01-01')", Reach::nobody},
        {"exclusion_rule VALUES ('ended', 'source_account', 'mail', '', '2026-01-01')", Reach::nobody},
        {"deletion_tombstone VALUES ('ana', 'person', '')", Reach::notDeletedToo},
        {"deletion_tombstone VALUES ('t', 'thread', '')", Reach::notDeletedToo},
        {"deletion_tombstone VALUES ('i', 'interaction', '')", Reach::notDeletedToo},
        {"deletion_tombstone VALUES ('event-i', 'source_event', '')", Reach::notDeletedToo},
        {"deletion_tombstone VALUES ('i', 'source_event', '')", Reach::nobody},
        {"deletion_tombstone VALUES ('ana', 'identity', '')", Reach::nobody},
        {"deletion_tombstone VALUES ('i', 'source_object', '')", Reach::nobody}}) {
    store.run("SAVEPOINT before");
    store.run(std::string{"INSERT INTO "} + row);
    EXPECT_EQ(letsThrough(Policy::showable), hiddenFrom == Reach::nobody) << row;
    EXPECT_EQ(letsThrough(Policy::notDeleted), hiddenFrom != Reach::notDeletedToo) << row;
    EXPECT_TRUE(letsThrough(Policy::everything)) << row;
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

TEST(OccurredAtAsOf, TakesInItsWholeSecond) {
  const Instant asOf = *parseInternetDateTime("2026-03-01T10:00:00Z") + std::chrono::milliseconds{999};
  const auto predicate = SourceEligibility::occurredAtAsOfPredicate(asOf, "i.occurred_at");
  EXPECT_EQ(predicate.sql, "i.occurred_at <= ?");
  EXPECT_EQ(predicate.argument, "2026-03-01T10:00:00Z");
}

TEST_F(SourceEligibilityTest, SourceObjectIsGoneWhenMarkedOrNamedByATombstone) {
  store.run(
      "INSERT INTO source_object VALUES ('kept', '', '', NULL), ('marked', '', '', '2026'), ('named', '', '', NULL)");
  store.run("INSERT INTO deletion_tombstone VALUES ('named', 'source_object', ''), ('kept', 'thread', '')");
  const auto gone = SourceEligibility::sourceObjectTombstonedSQL("so", store.connection());
  EXPECT_EQ(
      store.connection().fetchOptionalText("SELECT group_concat(id ORDER BY id) FROM source_object so WHERE " + gone),
      "marked,named");
}

} // namespace
} // namespace orvan
