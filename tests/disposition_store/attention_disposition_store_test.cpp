#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"

#include <gmock/gmock.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <future>

#include "OrvanStore/store_error.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using Action = AttentionItemAction;
using Kind = AttentionWhyNowItem::Kind;
using Record = AttentionItemDispositionRecord;
using Reference = AttentionWhyNowEvidenceReference;
using State = AttentionItemState;
using testing::ElementsAre;
using testing::IsEmpty;

AttentionCatchUpItem item(std::vector<Reference> references = {Reference::interaction("i-1"), Reference::thread("t-1")},
                          Kind kind = Kind::openThread) {
  return sampleItem("key", "p-1", kind, std::move(references));
}

class Dispositions : public testing::Test {
 protected:
  static void SetUpTestSuite() { deriveKeysQuickly(); }

  Dispositions() {
    createStore(file);
    open();
  }

  void open() {
    store.reset();
    store = std::make_unique<AttentionDispositionStore>(file, CredentialVault{std::make_shared<KeyInMemory>()});
  }

  State apply(const AttentionCatchUpItem& onItem, const Action& action, Instant asOf = actionTime) {
    const auto record = waitFor(store->executor(), store->apply(onItem, action, asOf));
    EXPECT_EQ(record.itemKey(), onItem.itemKey());
    return record.state();
  }

  /// The person's records, the same before and after the file is opened again.
  std::vector<Record> records(const std::string& personID = "p-1") {
    auto before = waitFor(store->executor(), store->records(personID));
    open();
    EXPECT_EQ(waitFor(store->executor(), store->records(personID)), before);
    return before;
  }

  /// The columns of every row of a table, joined.
  std::vector<std::string> rows(const std::string& table, const std::string& columns) const {
    Connection connection(file, keyedConfiguration());
    std::vector<std::string> texts;
    auto found = connection.query("SELECT concat_ws('|', " + columns + ") FROM relationship_attention_" + table);
    while (found.next()) {
      texts.emplace_back(found.text(Column{0}));
    }
    return texts;
  }
  std::vector<std::string> candidates() const {
    return rows("candidate",
                "candidate_key, person_id, kind, why_now_code, defining_event_at, ifnull(due_at, 'NULL'), "
                "ifnull(expires_at, 'NULL'), generator_version, created_at");
  }
  std::vector<std::string> evidence() const {
    return rows("candidate_evidence", "candidate_key, reference_kind, reference_id");
  }
  std::vector<std::string> dispositions() const {
    return rows("disposition",
                "candidate_key, person_id, state, ifnull(snoozed_until, 'NULL'), created_at, updated_at");
  }

  void change(const std::string& script) const { Connection(file, keyedConfiguration()).executeScript(script); }

  /// Has the canonical table replaced by one that takes any value.
  void storeAnyDisposition(const std::string& stateAndEnd) const {
    change(
        "PRAGMA foreign_keys = OFF; DROP TABLE relationship_attention_disposition;"
        "CREATE TABLE relationship_attention_disposition (candidate_key PRIMARY KEY, person_id, state, "
        "snoozed_until, created_at, updated_at);"
        "INSERT INTO relationship_attention_disposition VALUES ('key', 'p-1', " +
        stateAndEnd + ", 'then', 'then')");
  }

  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "store.db";
  std::unique_ptr<AttentionDispositionStore> store;
};

TEST_F(Dispositions, AFirstActionWritesTheCandidateItsEvidenceAndTheDisposition) {
  EXPECT_EQ(apply(item(), Action::resolve()), State::resolved());
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::resolved()}));
  EXPECT_THAT(candidates(), ElementsAre("key|p-1|counterpart_request|openThread|2026-03-01T10:00:00Z|NULL|NULL|"
                                        "catchup-apply-time-v1|2026-03-05T14:07:09Z"));
  EXPECT_THAT(evidence(), ElementsAre("key|interaction|i-1", "key|thread|t-1"));
  EXPECT_THAT(dispositions(), ElementsAre("key|p-1|resolved|NULL|2026-03-05T14:07:09Z|2026-03-05T14:07:09Z"));
}

TEST_F(Dispositions, EveryKindOfReasonHasItsCode) {
  for (const auto kind : {Kind::openThread, Kind::changedContext, Kind::commitment, Kind::upcomingInteraction}) {
    apply(sampleItem(std::string{caseName(kind)}, "p-1", kind, {}), Action::dismiss());
  }
  EXPECT_THAT(rows("candidate", "kind, why_now_code"),
              ElementsAre("counterpart_request|openThread", "meaningful_change|changedContext",
                          "unresolved_followup|commitment", "upcoming_interaction|upcomingInteraction"));
}

TEST_F(Dispositions, EveryKindOfReferenceIsStoredOnceAndNoneIsRequired) {
  apply(item({}), Action::dismiss());
  EXPECT_THAT(evidence(), IsEmpty());
  apply(item({Reference::claimEvidence("1"), Reference::interaction("2"), Reference::openLoop("3"),
              Reference::sourceEvent("4"), Reference::thread("5"), Reference::thread("5")}),
        Action::dismiss());
  EXPECT_THAT(evidence(), ElementsAre("key|claim_evidence|1", "key|interaction|2", "key|open_loop|3",
                                      "key|source_event|4", "key|thread|5"));
  EXPECT_THAT(candidates(), testing::SizeIs(1));
}

TEST_F(Dispositions, ASnoozeIsKeptInWholeSecondsAndReportedExactly) {
  const Instant until = actionTime + 24h + 750ms;
  EXPECT_EQ(apply(item(), Action::snooze(until)), State::snoozed(until));
  EXPECT_THAT(dispositions(),
              ElementsAre("key|p-1|snoozed|2026-03-06T14:07:09Z|2026-03-05T14:07:09Z|2026-03-05T14:07:09Z"));
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::snoozed(actionTime + 24h)}));
  EXPECT_EQ(apply(item(), Action::snooze(actionTime + 1h)), State::snoozed(actionTime + 1h)) << "a new end replaces it";
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::snoozed(actionTime + 1h)}));
}

TEST_F(Dispositions, AFinalStateStaysButItsRowsAreWrittenAnew) {
  apply(item(), Action::resolve());
  change(
      "UPDATE relationship_attention_candidate SET due_at = 'due', expires_at = 'over', person_id = 'other', "
      "kind = 'k', why_now_code = 'w', defining_event_at = 'd', generator_version = 'followup'");
  EXPECT_EQ(apply(item({Reference::thread("t-2")}, Kind::commitment), Action::dismiss(), actionTime + 60s),
            State::resolved());
  EXPECT_THAT(dispositions(), ElementsAre("key|p-1|resolved|NULL|2026-03-05T14:07:09Z|2026-03-05T14:08:09Z"));
  EXPECT_THAT(candidates(), ElementsAre("key|p-1|unresolved_followup|commitment|2026-03-01T10:00:00Z|due|over|"
                                        "catchup-apply-time-v1|2026-03-05T14:07:09Z"));
  EXPECT_THAT(evidence(), ElementsAre("key|interaction|i-1", "key|thread|t-1", "key|thread|t-2"));
  EXPECT_EQ(apply(item(), Action::snooze(actionTime + 48h), actionTime + 120s), State::resolved());
}

TEST_F(Dispositions, ASnoozeIntoThePastLeavesNoRowOfAnActiveItemAndARunningSnoozeAlone) {
  EXPECT_EQ(apply(item(), Action::snooze(actionTime)), State::active());
  EXPECT_THAT(candidates(), IsEmpty());
  apply(item(), Action::snooze(actionTime + 1h));
  EXPECT_EQ(apply(item(), Action::snooze(actionTime - 1s)), State::snoozed(actionTime + 1h));
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::snoozed(actionTime + 1h)}));
  EXPECT_EQ(apply(item(), Action::snooze(actionTime), actionTime + 1h), State::active()) << "the old one is over";
  EXPECT_THAT(records(), IsEmpty());
  EXPECT_THAT(candidates(), IsEmpty());
}

TEST_F(Dispositions, AnUnreadableRowCountsAsNoneAndIsOverwritten) {
  for (const char* stateAndEnd :
       {"'active', NULL", "NULL, NULL", "'Dismissed', NULL", "x'646973', NULL", "7, NULL", "'snoozed', NULL",
        "'snoozed', 'tomorrow'", "'snoozed', 1772000000", "'snoozed', '2026-03-06T14:07:09.5Z'"}) {
    storeAnyDisposition(stateAndEnd);
    EXPECT_THAT(records(), IsEmpty()) << stateAndEnd;
    EXPECT_EQ(apply(item(), Action::dismiss()), State::dismissed()) << stateAndEnd;
    EXPECT_THAT(records(), ElementsAre(Record{"key", State::dismissed()}));
  }
}

TEST_F(Dispositions, RecordsAreThePersonsOwnWithoutTheUnreadable) {
  storeAnyDisposition("'resolved', NULL");
  change(
      "INSERT INTO relationship_attention_disposition VALUES "
      "(NULL, 'p-1', 'resolved', NULL, '', ''), ('over', 'p-1', 'snoozed', '2020-01-01T01:00:00+01:00', '', ''), "
      "('other', 'p-2', 'resolved', NULL, '', ''), ('last', 'p-1', 'dismissed', 'x', '', '')");
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::resolved()},
                                     Record{"over", State::snoozed(std::chrono::sys_days{2020y / 1 / 1})},
                                     Record{"last", State::dismissed()}));
  EXPECT_THAT(records("p-2"), ElementsAre(Record{"other", State::resolved()}));
  EXPECT_THAT(records("nobody"), IsEmpty());
}

TEST_F(Dispositions, AFaultLeavesNeitherCandidateNorDisposition) {
  for (const char* table : {"candidate", "candidate_evidence", "disposition"}) {
    change(std::string{"CREATE TRIGGER refuse BEFORE INSERT ON relationship_attention_"} + table +
           " BEGIN SELECT raise(ABORT, 'refused'); END");
    EXPECT_THROW(apply(item(), Action::dismiss()), StoreError) << table;
    EXPECT_THAT(candidates(), IsEmpty());
    EXPECT_THAT(evidence(), IsEmpty());
    EXPECT_THAT(records(), IsEmpty());
    change("DROP TRIGGER refuse");
  }
  EXPECT_EQ(apply(item(), Action::dismiss()), State::dismissed());
}

TEST_F(Dispositions, AreReadBesideAnotherProgramsWrite) {
  apply(item(), Action::dismiss());
  Connection other(file, keyedConfiguration());
  other.executeScript("BEGIN IMMEDIATE; UPDATE relationship_attention_disposition SET state = 'resolved'");
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::dismissed()}));
  other.executeScript("COMMIT");
  EXPECT_THAT(records(), ElementsAre(Record{"key", State::resolved()}));
}

TEST_F(Dispositions, ConcurrentCallersTakeTurnsAndAgree) {
  boost::asio::thread_pool callers(4);
  FollowUpDispositionApplying& followUps = *store;
  std::vector<std::future<std::optional<Record>>> answers;
  for (int number = 0; number < 40; ++number) {
    auto action = number % 2 == 0 ? Action::dismiss() : Action::resolve();
    answers.push_back(boost::asio::co_spawn(callers, resultInOptional(followUps.apply(item(), action, actionTime)),
                                            boost::asio::use_future));
  }
  const auto first = answers.front().get();
  for (auto& answer : std::span(answers).subspan(1)) {
    EXPECT_EQ(answer.get(), first);
  }
  EXPECT_THAT(records(), ElementsAre(first.value()));
}

} // namespace
} // namespace orvan
