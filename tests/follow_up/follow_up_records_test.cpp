#include "OrvanStore/store_error.h"
#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

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
        "SELECT printf('%s %s %s %s %s %s', person_id, kind, coalesce(evidence_ref, '-'), detected_at, state, "
        "created_at) "
        "FROM open_loop WHERE id = ?",
        id);
  }
  std::string candidateRow() {
    return value(
        R"sql(SELECT printf('%s %s %s %s %s %s %s %s %s', candidate_key, person_id, kind, why_now_code, defining_event_at, due_at,
                        coalesce(expires_at, '-'), generator_version, created_at)
                        FROM relationship_attention_candidate)sql");
  }

  void decide(const std::string& state) {
    execute(R"sql(INSERT INTO relationship_attention_disposition
                    (candidate_key, person_id, state, created_at, updated_at)
                  SELECT candidate_key, person_id, ?, created_at, created_at FROM relationship_attention_candidate)sql",
            state);
  }

  std::vector<std::string> liveIDs() {
    std::vector<std::string> ids;
    for (const auto* id : {"f-1", "f-2", "f-3"}) {
      if (pool->read(
              [&](Connection& connection) { return FollowUpScheduler::notificationMayPresent(connection, id); })) {
        ids.emplace_back(id);
      }
    }
    return ids;
  }
};

TEST_F(FollowUpRecords, ANewFollowUpIsMirroredByAnOpenLoopAndACandidateWithItsEvidence) {
  EXPECT_EQ(schedule("f-1", inOneHour()), noRow);
  EXPECT_EQ(followUpRow("f-1"),
            "abc p1 2026-03-04T10:15:00Z scheduled 2026-03-04T09:15:00Z - 0c5f2f1e-8a44-4b0e-9e6d-3c1b2a495867 "
            "open-loop:follow-up:f-1");
  EXPECT_EQ(openLoopRow("open-loop:follow-up:f-1"),
            "p1 scheduled_followup - 2026-03-04T09:15:00Z open 2026-03-04T09:15:00Z");
  EXPECT_EQ(candidateRow(),
            "2:p1|10:commitment|20:2026-03-04T09:15:00Z|32:openLoop:open-loop:follow-up:f-1 p1 unresolved_followup "
            "commitment 2026-03-04T09:15:00Z 2026-03-04T10:15:00Z - followup-upsert-projection-v1 "
            "2026-03-04T09:15:00Z");
  EXPECT_EQ(value("SELECT reference_kind || ' ' || reference_id FROM relationship_attention_candidate_evidence"),
            "open_loop open-loop:follow-up:f-1");
  EXPECT_EQ(count("relationship_attention_candidate_evidence"), 1);
}

TEST_F(FollowUpRecords, ANewDueTimeKeepsWhatSaysWhenTheFollowUpWasMade) {
  schedule("f-1", inOneHour());
  complete("f-1");
  advance(10min);
  const auto prior = schedule("f-1", clock->now() + 24h);
  EXPECT_EQ(prior,
            (PersistedFollowUp{"f-1", "abc", "p1", "2026-03-04T10:15:00Z", "completed", "2026-03-04T09:15:00Z"}));
  EXPECT_EQ(followUpRow("f-1"),
            "abc p1 2026-03-05T09:25:00Z scheduled 2026-03-04T09:15:00Z - 0c5f2f1e-8a44-4b0e-9e6d-3c1b2a495867 "
            "open-loop:follow-up:f-1");
  EXPECT_EQ(openLoopRow("open-loop:follow-up:f-1"),
            "p1 scheduled_followup - 2026-03-04T09:15:00Z open 2026-03-04T09:15:00Z");
  EXPECT_THAT(candidateRow(), testing::HasSubstr("2026-03-04T09:15:00Z 2026-03-05T09:25:00Z - "
                                                 "followup-upsert-projection-v1 2026-03-04T09:15:00Z"));
  EXPECT_EQ(count("relationship_attention_candidate"), 1);
}

TEST_F(FollowUpRecords, AnIdOfAnotherPairIsRefusedBeforeAnythingIsWritten) {
  schedule("f-1", inOneHour());
  const std::string before = followUpRow("f-1");
  EXPECT_THROW(schedule("f-1", inOneHour() + 1h, "p2"), FollowUpScopeMismatch);
  EXPECT_THROW(schedule("f-1", inOneHour() + 1h, "p1", "other"), FollowUpScopeMismatch);
  EXPECT_EQ(followUpRow("f-1"), before);
  EXPECT_EQ(count("open_loop"), 1);
  EXPECT_EQ(count("relationship_attention_candidate"), 1);
}

TEST_F(FollowUpRecords, APairKeepsTheIdOfItsNewestRow) {
  const auto upsertPair = [this](const char* operationID) {
    return write([&](Connection& connection) {
      return scheduler.upsert(connection, "abc", "p1", inOneHour(), *Uuid::parse(operationID), clock->now());
    });
  };
  EXPECT_EQ(upsertPair("AAAAAAAA-0000-4000-8000-000000000001"), noRow);
  const auto existing = upsertPair("BBBBBBBB-0000-4000-8000-000000000002");
  ASSERT_TRUE(existing.has_value());
  EXPECT_EQ(existing->id(), "aaaaaaaa-0000-4000-8000-000000000001");
  EXPECT_EQ(count("follow_up"), 1);

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

TEST_F(FollowUpRecords, OnlyAScheduledFollowUpIsCompleted) {
  schedule("f-1", inOneHour());
  const auto completePair = [this] {
    return write([&](Connection& connection) { return scheduler.complete(connection, "abc", "p1", clock->now()); });
  };
  const auto row = completePair();
  ASSERT_TRUE(row.has_value());
  EXPECT_EQ(row->state(), "scheduled");
  EXPECT_EQ(scheduler.followUp("f-1")->completedAt(), "2026-03-04T09:15:00Z");
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" done "));
  EXPECT_EQ(count("relationship_attention_candidate"), 1);
  advance(1min);
  EXPECT_EQ(completePair(), noRow);
  EXPECT_EQ(scheduler.followUp("f-1")->completedAt(), "2026-03-04T09:15:00Z");
  EXPECT_EQ(write([&](Connection& connection) { return scheduler.complete(connection, "unknown", clock->now()); }),
            noRow);
  EXPECT_EQ(write([&](Connection& connection) { return scheduler.cancel(connection, "f-1"); }), noRow);
  EXPECT_EQ(scheduler.followUp("f-1")->state(), "completed");
}

TEST_F(FollowUpRecords, CancellingTakesTheCandidateBackUnlessTheUserHasDecidedAboutIt) {
  schedule("f-1", inOneHour());
  const auto cancelled = write([&](Connection& connection) { return scheduler.cancel(connection, "f-1"); });
  EXPECT_EQ(cancelled->state(), "scheduled");
  EXPECT_EQ(scheduler.followUp("f-1")->state(), "cancelled");
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" dismissed "));
  EXPECT_EQ(count("relationship_attention_candidate"), 0);

  schedule("f-1", inOneHour());
  decide("snoozed");
  write([&](Connection& connection) { return scheduler.cancel(connection, "f-1"); });
  EXPECT_EQ(count("relationship_attention_candidate"), 1);
  EXPECT_EQ(count("relationship_attention_disposition"), 1);
}

TEST_F(FollowUpRecords, ReopeningSchedulesACompletedFollowUpAndProjectsThePersonsCandidates) {
  const auto reopen = [this](const std::string& id) {
    return write([&](Connection& connection) { return scheduler.reopen(connection, id); });
  };
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  EXPECT_FALSE(reopen("f-1")) << "it is scheduled";
  complete("f-1");
  execute("DELETE FROM relationship_attention_candidate");
  EXPECT_TRUE(reopen("f-1"));
  EXPECT_EQ(*scheduler.followUp("f-1"),
            (PersistedFollowUp{"f-1", "abc", "p1", "2026-03-04T10:15:00Z", "scheduled", std::nullopt}));
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" open "));
  EXPECT_EQ(count("relationship_attention_candidate"), 2);
  EXPECT_FALSE(reopen("unknown"));
}

TEST_F(FollowUpRecords, ReprojectingPassesOverFollowUpsWhoseOpenLoopIsMissing) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  execute("DELETE FROM relationship_attention_candidate");
  execute("DELETE FROM open_loop WHERE id = 'open-loop:follow-up:f-2'");
  scheduler.reprojectCandidates("p1");
  EXPECT_THAT(candidateRow(), testing::HasSubstr("open-loop:follow-up:f-1"));
  EXPECT_EQ(count("relationship_attention_candidate"), 1);
}

TEST_F(FollowUpRecords, RestoringPutsTheRowItsLoopAndItsCandidateBack) {
  const auto restore = [this](const std::optional<PersistedFollowUp>& prior) {
    write([&](Connection& connection) { scheduler.restore(connection, "f-1", prior); });
  };
  schedule("f-1", inOneHour());
  const auto asScheduled = scheduler.followUp("f-1");
  complete("f-1");
  const auto asCompleted = scheduler.followUp("f-1");
  write([&](Connection& connection) { FollowUpScheduler::retractCandidate(connection, "open-loop:follow-up:f-1"); });

  restore(asScheduled);
  EXPECT_EQ(scheduler.followUp("f-1"), asScheduled);
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" open "));
  EXPECT_EQ(count("relationship_attention_candidate"), 1);

  restore(asCompleted);
  EXPECT_EQ(scheduler.followUp("f-1"), asCompleted);
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" done "));

  restore(noRow);
  EXPECT_EQ(scheduler.followUp("f-1")->state(), "cancelled");
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" dismissed "));
  EXPECT_EQ(count("relationship_attention_candidate"), 0);

  write([&](Connection& connection) { scheduler.restore(connection, "abc", "p1", asScheduled); });
  EXPECT_EQ(scheduler.followUp("f-1"), asScheduled);
  EXPECT_NO_THROW(write([&](Connection& connection) { scheduler.restore(connection, "abc", "unknown", asScheduled); }));
}

TEST_F(FollowUpRecords, WithoutAStoredOpenLoopTheOneOfTheIdStandsIn) {
  schedule("f-1", inOneHour());
  execute("UPDATE follow_up SET open_loop_id = NULL");
  complete("f-1");
  EXPECT_THAT(openLoopRow("open-loop:follow-up:f-1"), testing::HasSubstr(" done "));
  execute(
      "INSERT INTO open_loop VALUES ('loop', 'p1', 'scheduled_followup', NULL, '2026-01-01T00:00:00Z', 'open', '')");
  execute("UPDATE follow_up SET open_loop_id = 'loop'");
  schedule("f-1", inOneHour());
  complete("f-1");
  EXPECT_THAT(openLoopRow("loop"), testing::HasSubstr(" done ")) << "an existing row keeps its open loop";
}

TEST_F(FollowUpRecords, AnUnusableDetectedAtTextGivesNoCandidate) {
  schedule("f-1", inOneHour());
  execute("DELETE FROM relationship_attention_candidate");
  execute("UPDATE open_loop SET detected_at = 'yesterday'");
  schedule("f-1", inOneHour());
  EXPECT_EQ(count("relationship_attention_candidate"), 0);
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
  EXPECT_THAT(liveIDs(), ElementsAre("f-1", "f-2", "f-3"));
  tombstone("gone");
  execute("INSERT INTO deletion_tombstone VALUES ('deleted', 'source_object', '2026-03-01T00:00:00Z')");
  EXPECT_THAT(liveIDs(), ElementsAre("f-1"));
  execute("DELETE FROM source_object WHERE id = 'abc'");
  EXPECT_THAT(liveIDs(), IsEmpty());
}

TEST_F(FollowUpRecords, OfASourceObjectAreTheScheduledOnesInOrderOfPeople) {
  schedule("f-1", inOneHour(), "p2");
  schedule("f-2", inOneHour(), "p1");
  schedule("f-3", inOneHour(), "p3");
  complete("f-3");
  const auto rows = pool->read([&](Connection& connection) { return scheduler.rows(connection, "abc"); });
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0].id(), "f-2");
  EXPECT_EQ(rows[1].id(), "f-1");
}

TEST_F(FollowUpRecords, ARowThatLacksARequiredValueIsAStoreError) {
  pool->write([](Connection& connection) {
    connection.executeScript(
        "ALTER TABLE follow_up RENAME TO strict_follow_up; CREATE TABLE follow_up (id, "
        "source_object_id, person_id, due_at, state, created_at, completed_at, "
        "origin_operation_id, open_loop_id); INSERT INTO follow_up (id, state) VALUES ('f-1', "
        "'scheduled')");
  });
  try {
    scheduler.followUp("f-1");
    FAIL() << "a row without a source object was read";
  } catch (const StoreError& error) {
    EXPECT_EQ(error.code(), StoreFault::columnIsNull);
  }
}

} // namespace
} // namespace orvan
