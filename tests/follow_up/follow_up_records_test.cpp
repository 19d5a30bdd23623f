#include "OrvanStore/store_error.h"
#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto noRow = std::nullopt;

class FollowUpRecords : public FollowUpStoreTest {
 protected:
  std::string followUpRow(const std::string& id) {
    return value(R"sql(SELECT printf('%s %s %s %s %s %s %s %s', source_object_id, person_id, due_at, state, created_at,
                         coalesce(completed_at, '-'), origin_operation_id, open_loop_id) FROM follow_up WHERE id = ?)sql",
                 id);
  }
  std::string openLoopRow(const std::string& id) {
    return value(
        R"sql(SELECT printf('%s %s %s %s %s %s', person_id, kind, coalesce(evidence_ref, '-'), detected_at, state, created_at)
                       FROM open_loop WHERE id = ?)sql",
        id);
  }
  std::string candidateRow() {
    return value(
        R"sql(SELECT printf('%s %s %s %s %s %s %s %s %s', candidate_key, person_id, kind, why_now_code, defining_event_at, due_at,
                         coalesce(expires_at, '-'), generator_version, created_at)
                       FROM relationship_attention_candidate)sql");
  }

  /// The state of a follow-up and of its open loop, and how many candidates there are.
  std::string states(const std::string& id) {
    return state(id) + " " + value("SELECT state FROM open_loop WHERE id = ?", "open-loop:follow-up:" + id) + " " +
           count("relationship_attention_candidate");
  }

  std::optional<PersistedFollowUp> completePair() {
    return write([&](Connection& connection) { return scheduler.complete(connection, "abc", "p1", clock->now()); });
  }
  bool reopen(const std::string& id) {
    return write([&](Connection& connection) { return scheduler.reopen(connection, id); });
  }
  void restore(const std::optional<PersistedFollowUp>& prior) {
    write([&](Connection& connection) { scheduler.restore(connection, "f-1", prior); });
  }
  bool isLive(const char* id) {
    return pool->read(
        [&](Connection& connection) { return FollowUpScheduler::notificationMayPresent(connection, id); });
  }
};

TEST_F(FollowUpRecords, AFollowUpIsMirroredByAnOpenLoopAndACandidateAndANewDueTimeKeepsWhenItWasMade) {
  EXPECT_EQ(schedule("f-1", inOneHour()), noRow);
  EXPECT_EQ(followUpRow("f-1"),
            "abc p1 2026-03-04T10:15:00Z scheduled 2026-03-04T09:15:00Z - 0c5f2f1e-8a44-4b0e-9e6d-3c1b2a495867 "
            "open-loop:follow-up:f-1");
  const std::string loop = openLoopRow("open-loop:follow-up:f-1");
  EXPECT_EQ(loop, "p1 scheduled_followup - 2026-03-04T09:15:00Z open 2026-03-04T09:15:00Z");
  const std::string candidate =
      "2:p1|10:commitment|20:2026-03-04T09:15:00Z|32:openLoop:open-loop:follow-up:f-1 p1 unresolved_followup "
      "commitment 2026-03-04T09:15:00Z ";
  const std::string rest = " - followup-upsert-projection-v1 2026-03-04T09:15:00Z";
  EXPECT_EQ(candidateRow(), candidate + "2026-03-04T10:15:00Z" + rest);
  EXPECT_EQ(value("SELECT group_concat(reference_kind || ' ' || reference_id) "
                  "FROM relationship_attention_candidate_evidence"),
            "open_loop open-loop:follow-up:f-1");

  complete("f-1");
  advance(10min);
  EXPECT_EQ(schedule("f-1", clock->now() + 24h),
            (PersistedFollowUp{"f-1", "abc", "p1", "2026-03-04T10:15:00Z", "completed", "2026-03-04T09:15:00Z"}));
  EXPECT_EQ(followUpRow("f-1"),
            "abc p1 2026-03-05T09:25:00Z scheduled 2026-03-04T09:15:00Z - 0c5f2f1e-8a44-4b0e-9e6d-3c1b2a495867 "
            "open-loop:follow-up:f-1");
  EXPECT_EQ(openLoopRow("open-loop:follow-up:f-1"), loop);
  EXPECT_EQ(candidateRow(), candidate + "2026-03-05T09:25:00Z" + rest);
}

TEST_F(FollowUpRecords, AnIdOfAnotherPairIsRefusedBeforeAnythingIsWritten) {
  schedule("f-1", inOneHour());
  const std::string before = followUpRow("f-1");
  EXPECT_THROW(schedule("f-1", inOneHour() + 1h, "p2"), FollowUpScopeMismatch);
  EXPECT_THROW(schedule("f-1", inOneHour() + 1h, "p1", "other"), FollowUpScopeMismatch);
  EXPECT_EQ(followUpRow("f-1"), before);
  EXPECT_EQ(count("open_loop"), "1");
}

TEST_F(FollowUpRecords, APairKeepsTheIdOfItsNewestRow) {
  const auto upsertPair = [this](const char* operationID) {
    return write([&](Connection& connection) {
      return scheduler.upsert(connection, "abc", "p1", inOneHour(), *Uuid::parse(operationID), clock->now());
    });
  };
  EXPECT_EQ(upsertPair("AAAAAAAA-0000-4000-8000-000000000001"), noRow);
  EXPECT_EQ(upsertPair("BBBBBBBB-0000-4000-8000-000000000002")->id(), "aaaaaaaa-0000-4000-8000-000000000001");
  EXPECT_EQ(count("follow_up"), "1");
  schedule("zz", inOneHour());
  schedule("b", inOneHour());
  EXPECT_EQ(scheduler.followUp("abc", "p1")->id(), "zz") << "of rows made at once, the greatest id";
  advance(1s);
  schedule("a", inOneHour());
  EXPECT_EQ(scheduler.followUp("abc", "p1")->id(), "a");
  execute("DELETE FROM follow_up");
  execute(
      "INSERT INTO follow_up (id, source_object_id, person_id, due_at, state, created_at) "
      "VALUES ('', 'abc', 'p1', '2026-03-05T00:00:00Z', 'scheduled', '2026-03-05T00:00:00Z')");
  upsertPair("CCCCCCCC-0000-4000-8000-000000000003");
  EXPECT_EQ(value("SELECT max(id) FROM follow_up"), "cccccccc-0000-4000-8000-000000000003");
}

TEST_F(FollowUpRecords, OfASourceObjectAreTheScheduledOnesInOrderOfPeople) {
  schedule("f-1", inOneHour(), "p2");
  schedule("f-2", inOneHour(), "p1");
  schedule("f-3", inOneHour(), "p3");
  complete("f-3");
  const auto rows = pool->read([&](Connection& connection) { return scheduler.rows(connection, "abc"); });
  EXPECT_THAT(rows, ElementsAre(*scheduler.followUp("f-2"), *scheduler.followUp("f-1")));
}

TEST_F(FollowUpRecords, OnlyAScheduledFollowUpIsCompletedOrCancelledAndOnlyACompletedOneReopened) {
  schedule("f-1", inOneHour());
  EXPECT_FALSE(reopen("f-1"));
  EXPECT_EQ(completePair()->state(), "scheduled") << "the row as it was before";
  EXPECT_EQ(states("f-1"), "completed done 1");
  advance(1min);
  EXPECT_EQ(completePair(), noRow);
  EXPECT_EQ(cancel("f-1"), noRow);
  EXPECT_EQ(scheduler.followUp("f-1")->completedAt(), "2026-03-04T09:15:00Z");
  EXPECT_TRUE(reopen("f-1"));
  EXPECT_EQ(scheduler.followUp("f-1")->completedAt(), std::nullopt);
  EXPECT_EQ(states("f-1"), "scheduled open 1");
  EXPECT_EQ(cancel("f-1")->state(), "scheduled");
  EXPECT_EQ(states("f-1"), "cancelled dismissed 0");
  EXPECT_EQ(completePair(), noRow);
  EXPECT_FALSE(reopen("f-1"));
  EXPECT_FALSE(reopen("unknown"));
}

TEST_F(FollowUpRecords, ReopeningAndReprojectingWriteThePersonsCandidatesForWhichThereIsAnOpenLoop) {
  for (const auto* id : {"f-1", "f-2", "f-3"}) {
    schedule(id, inOneHour());
  }
  complete("f-1");
  execute("DELETE FROM relationship_attention_candidate");
  execute("DELETE FROM open_loop WHERE id = 'open-loop:follow-up:f-2'");
  EXPECT_TRUE(reopen("f-1"));
  EXPECT_EQ(states("f-1"), "scheduled open 2");
  execute("DELETE FROM relationship_attention_candidate");
  scheduler.reprojectCandidates("p1");
  EXPECT_EQ(states("f-1"), "scheduled open 2");
}

TEST_F(FollowUpRecords, RestoringPutsTheRowItsLoopAndItsCandidateBack) {
  schedule("f-1", inOneHour());
  const auto asScheduled = scheduler.followUp("f-1");
  complete("f-1");
  const auto asCompleted = scheduler.followUp("f-1");
  write([&](Connection& connection) { FollowUpScheduler::retractCandidate(connection, "open-loop:follow-up:f-1"); });
  restore(asScheduled);
  EXPECT_EQ(scheduler.followUp("f-1"), asScheduled);
  EXPECT_EQ(states("f-1"), "scheduled open 1");
  restore(asCompleted);
  EXPECT_EQ(scheduler.followUp("f-1"), asCompleted);
  EXPECT_EQ(states("f-1"), "completed done 1");
  restore(noRow);
  EXPECT_EQ(states("f-1"), "cancelled dismissed 0");
  for (const auto* person : {"p1", "unknown"}) {
    write([&](Connection& connection) { scheduler.restore(connection, "abc", person, asScheduled); });
  }
  EXPECT_EQ(states("f-1"), "scheduled open 1");
}

TEST_F(FollowUpRecords, TheRowsOwnOpenLoopIsKeptAndTheOneOfTheIdStandsInForNone) {
  schedule("f-1", inOneHour());
  execute("UPDATE follow_up SET open_loop_id = NULL");
  complete("f-1");
  EXPECT_EQ(states("f-1"), "completed done 1");
  addOpenLoop("loop");
  execute("UPDATE follow_up SET open_loop_id = 'loop'");
  schedule("f-1", inOneHour());
  complete("f-1");
  EXPECT_THAT(openLoopRow("loop"), HasSubstr(" done "));
}

TEST_F(FollowUpRecords, AnUnusableDetectedAtTextGivesNoCandidate) {
  schedule("f-1", inOneHour());
  execute("DELETE FROM relationship_attention_candidate");
  execute("UPDATE open_loop SET detected_at = 'yesterday'");
  schedule("f-1", inOneHour());
  EXPECT_EQ(states("f-1"), "scheduled open 0");
  EXPECT_EQ(FollowUpScheduler::attentionItem("p1 ", "loop", "2026-01-01T00:00:00Z"), std::nullopt);
  const auto item = FollowUpScheduler::attentionItem("p1", "loop", "2026-01-01T00:00:00Z");
  ASSERT_TRUE(item.has_value());
  EXPECT_EQ(item->whyNow().headline(), "A follow-up with them is coming due.");
  EXPECT_THAT(item->whyNow().evidenceLines(), ElementsAre("Noticed 2026-01-01T00:00:00Z."));
  EXPECT_EQ(item->displayName(), "p1");
}

TEST_F(FollowUpRecords, LiveAreScheduledOnesWhoseSourceIsThereAndNotDeleted) {
  addSource("gone");
  addSource("deleted");
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour(), "p1", "gone");
  schedule("f-3", inOneHour(), "p1", "deleted");
  EXPECT_TRUE(isLive("f-1") && isLive("f-2") && isLive("f-3"));
  tombstone("gone");
  execute("INSERT INTO deletion_tombstone VALUES ('deleted', 'source_object', '2026-03-01T00:00:00Z')");
  EXPECT_TRUE(isLive("f-1"));
  EXPECT_FALSE(isLive("f-2") || isLive("f-3"));
  execute("DELETE FROM source_object WHERE id = 'abc'");
  EXPECT_FALSE(isLive("f-1"));
}

TEST_F(FollowUpRecords, ARowThatLacksARequiredValueIsAStoreError) {
  execute("ALTER TABLE follow_up RENAME TO strict_follow_up");
  execute("CREATE TABLE follow_up (id, source_object_id, person_id, due_at, state, completed_at)");
  execute("INSERT INTO follow_up (id, state) VALUES ('f-1', 'scheduled')");
  try {
    scheduler.followUp("f-1");
    FAIL() << "a row without a source object was read";
  } catch (const StoreError& error) {
    EXPECT_EQ(error.code(), StoreFault::columnIsNull);
  }
}

} // namespace
} // namespace orvan
