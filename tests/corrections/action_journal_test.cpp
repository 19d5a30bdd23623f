#include "application/corrections/action_journal.h"

#include <gtest/gtest.h>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/transaction.h"
#include "application/corrections/user_correction.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

const Instant noon = parseInternetDateTime("2026-03-10T12:00:00Z").value();

class ActionJournal : public testing::Test {
 protected:
  ActionJournal() {
    store_.addPerson("ana");
    store_.add(TestOpenLoop{.id = "loop", .at = "2026-03-01T00:00:00Z"});
  }

  Connection& connection() { return store_.connection(); }

  /// An action on the loop and whatever else the statement touches.
  std::int64_t act(UserActionKind kind, const std::string& statement, Instant at = noon) {
    ChangeRecorder recorder(connection());
    recorder.watch(ChangedTable::openLoop, {"loop"});
    recorder.watch(ChangedTable::candidateEvidence, {"key", "thread", "t"});
    recorder.watch(ChangedTable::candidate, {"key"});
    connection().executeScript(statement);
    noteCorrection(CorrectionTarget::claim, "claim-loop", at, recorder, connection());
    return recordAction({kind, "ana", "said so", recorder.changes()}, at, connection());
  }

  std::int64_t undo(std::optional<std::int64_t> number = std::nullopt, Instant at = noon) {
    const auto body = [&](Connection& store) { return takeBackAction(number, at, store).entry.number; };
    return inTransaction(connection(), TransactionKind::write, body);
  }

  std::string loop(const char* column) {
    return connection().fetchOptionalText("SELECT " + std::string{column} + " FROM open_loop").value_or("gone");
  }
  std::int64_t count(const char* table) {
    return connection().fetchOptionalInteger("SELECT count(*) FROM " + std::string{table}).value();
  }

 private:
  TestStore store_;
};

TEST_F(ActionJournal, TakesBackWhatAnActionChangedAndNothingElse) {
  connection().executeScript(
      "INSERT INTO relationship_attention_candidate VALUES ('key', 'ana', 'k', 'w', 'd', NULL, NULL, 'g', 'c');"
      "INSERT INTO relationship_attention_candidate_evidence VALUES ('key', 'thread', 't')");
  const auto closed = act(UserActionKind::wrong,
                          "UPDATE open_loop SET state = 'dismissed';"
                          "DELETE FROM relationship_attention_candidate");
  const auto deleted = act(UserActionKind::merge, "DELETE FROM open_loop");
  EXPECT_EQ(count("user_correction"), 2);
  EXPECT_EQ(undo(), deleted);
  EXPECT_EQ(loop("state"), "dismissed");
  connection().execute("UPDATE open_loop SET kind = 'promise'");
  EXPECT_EQ(undo(), closed) << "the latest that was not taken back";
  EXPECT_EQ(loop("state") + " " + loop("kind"), "open promise") << "what was learned meanwhile stays";
  EXPECT_EQ(count("relationship_attention_candidate_evidence"), 1) << "a row before the one that it needs";
  EXPECT_EQ(count("user_correction"), 0);
  const auto history = actionHistory(noon, connection());
  ASSERT_EQ(history.size(), 2U);
  EXPECT_EQ(history[0].number, deleted);
  EXPECT_EQ(history[0].state, JournalEntry::State::undone);
}

TEST_F(ActionJournal, RefusesWhatIsFinalOldOrChangedSinceAndChangesNothing) {
  const auto old = act(UserActionKind::wrong, "UPDATE open_loop SET kind = 'a'", noon - std::chrono::days{31});
  const auto first = act(UserActionKind::wrong, "UPDATE open_loop SET state = 'dismissed', kind = 'b'");
  const auto second = act(UserActionKind::wrong, "UPDATE open_loop SET state = 'surfaced'");
  const auto final = act(UserActionKind::dismiss, "UPDATE open_loop SET detected_at = 'now'");
  const auto refusal = [this](std::optional<std::int64_t> number) { return faultOf([&] { return undo(number); }); };
  EXPECT_EQ(refusal(final), ActionJournalError::actionFinal);
  EXPECT_EQ(refusal(old), ActionJournalError::actionTooOld);
  EXPECT_EQ(refusal(99), ActionJournalError::actionUnknown);
  try {
    undo(first);
    ADD_FAILURE() << "it was changed since";
  } catch (const ChangedSince& changed) {
    EXPECT_EQ(changed.by().value().number, second) << "the latest that changed the same";
  }
  EXPECT_EQ(loop("state") + " " + loop("kind"), "surfaced b");
  EXPECT_EQ(undo(), second);
  EXPECT_EQ(refusal(second), ActionJournalError::takenBackAlready);
  EXPECT_EQ(undo(), first);
  EXPECT_EQ(refusal(std::nullopt), ActionJournalError::nothingToTakeBack);
  EXPECT_EQ(actionHistory(noon, connection()).size(), 3U) << "of the last thirty days";
}

} // namespace
} // namespace orvan
