#include <sqlite3.h>

#include "OrvanStore/store_error.h"
#include "OrvanStore/transaction.h"
#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;

/// Refuses the nth of the accesses that the store's statements ask leave for, on whichever connection it comes.
struct Faults {
  std::atomic<int> accesses = 0;
  std::atomic<int> nth = 0;

  void refuse(int access) {
    accesses = 0;
    nth = access;
  }
};

int authorize(void* plan, int /*action*/, const char* /*one*/, const char* /*two*/, const char* /*three*/,
              const char* /*four*/) {
  auto& faults = *static_cast<Faults*>(plan);
  return ++faults.accesses == faults.nth ? SQLITE_DENY : SQLITE_OK;
}

/// A store on which each statement is compiled anew, and so each of its accesses can be made to fail.
class StoreFaults : public FollowUpStoreTest {
 protected:
  StoreFaults() {
    failing = openPool(
        folder.path() / "store.db",
        [this](Connection& connection) { sqlite3_set_authorizer(connection.handle(), authorize, &faults); }, 0);
    onFailing = std::make_unique<FollowUpScheduler>(makeScheduler(failing));
    schedule("f-1", inOneHour());
    schedule("f-2", inOneHour(), "p2");
    complete("f-2");
  }
  ~StoreFaults() override { onFailing->stopAuthorizationRecovery(); }

  /// Everything follow-ups have in the store.
  std::string content() {
    return value(R"sql(
      SELECT (SELECT group_concat(id || due_at || state || ifnull(completed_at, '')) FROM follow_up)
        || (SELECT group_concat(id || state) FROM open_loop)
        || (SELECT group_concat(candidate_key || due_at) FROM relationship_attention_candidate)
        || (SELECT group_concat(candidate_key) FROM relationship_attention_candidate_evidence))sql");
  }

  /// Runs `run` in a transaction that is rolled back, with the nth access failing; says whether it came so far. The
  /// fault must reach the caller as a store error, with the transaction still the caller's to end.
  bool fails(int nth, const std::function<void(Connection&)>& run) {
    return failing->withoutTransaction([&](Connection& connection) {
      const Transaction transaction{connection, TransactionKind::write};
      faults.refuse(nth);
      bool threw = false;
      try {
        run(connection);
      } catch (const StoreError&) {
        threw = true;
      }
      EXPECT_EQ(threw, faults.accesses >= nth) << "access " << nth;
      EXPECT_TRUE(connection.isInTransaction());
      faults.refuse(0);
      return threw;
    });
  }

  Faults faults;
  std::shared_ptr<DatabasePool> failing;
  std::unique_ptr<FollowUpScheduler> onFailing;
};

TEST_F(StoreFaults, EveryStatementsFaultIsLeftToTheCallersTransaction) {
  const FollowUpScheduler& target = *onFailing;
  const Instant now = clock->now();
  const Instant later = inOneHour() + 1h;
  const auto prior = target.followUp("f-2");
  const auto scheduledPrior = target.followUp("f-1");
  const std::map<const char*, std::function<void(Connection&)>> operations{
      {"upsert of a new id", [&](auto& c) { target.upsert(c, "f-3", "abc", "p3", later, operation, now); }},
      {"upsert of a known id", [&](auto& c) { target.upsert(c, "f-1", "abc", "p1", later, operation, now); }},
      {"upsert of a pair", [&](auto& c) { target.upsert(c, "abc", "p1", later, operation, now); }},
      {"complete", [&](auto& c) { target.complete(c, "f-1", now); }},
      {"complete a pair", [&](auto& c) { target.complete(c, "abc", "p1", now); }},
      {"cancel", [&](auto& c) { target.cancel(c, "f-1"); }},
      {"reopen", [&](auto& c) { target.reopen(c, "f-2"); }},
      {"restore", [&](auto& c) { target.restore(c, "f-1", prior); }},
      {"restore to scheduled", [&](auto& c) { target.restore(c, "f-2", scheduledPrior); }},
      {"restore to nothing", [&](auto& c) { target.restore(c, "f-1", std::nullopt); }},
      {"restore a pair", [&](auto& c) { target.restore(c, "abc", "p1", prior); }},
      {"reproject", [&](auto& c) { target.reprojectCandidates(c, "p1"); }},
      {"rows", [&](auto& c) { target.rows(c, "abc"); }},
      {"refusal", [&](auto& c) { target.refusal(c, "f-1", "abc", "p1"); }},
      {"settle", [&](auto& c) {
         ActionEffectStore::settlePostCommit(c, operation, now);
         ActionEffectStore::settleUndoneUnlinkObligations(c, {}, now);
       }}};
  const std::string before = content();
  for (const auto& [name, run] : operations) {
    SCOPED_TRACE(name);
    int nth = 1;
    for (; fails(nth, run); ++nth) {
      EXPECT_EQ(content(), before);
    }
    EXPECT_GT(nth, 3) << "it was put to the test";
  }
}

TEST_F(StoreFaults, AsynchronousEffectsNeverThrow) {
  const FollowUpScheduler& target = *onFailing;
  int failures = 0;
  for (int nth = 1; nth <= 200; ++nth) {
    faults.refuse(nth);
    const Token byPair = resultOf(target.registerReminder("abc", "p1", "a title", inOneHour()));
    const Token byId = resultOf(target.registerReminder("f-1", "a title", inOneHour()));
    const Token resolved = resultOf(target.resolveAttention("f-1", clock->now()));
    resultOf(target.reconcileReminders());
    resultOf(target.cancelReminder("f-1"));
    failures += (byPair || byId || resolved) ? 1 : 0;
    EXPECT_THAT(byId, AnyOf(Token{}, EffectReasonToken::reminderNotRegistered, EffectReasonToken::followUpNotLive));
    EXPECT_THAT(byPair, AnyOf(Token{}, EffectReasonToken::followUpNotLive));
    EXPECT_THAT(resolved, AnyOf(Token{}, EffectReasonToken::storeUnreadable));
    EXPECT_FALSE(FollowUpRegistrationTracker::shared().hasActive({"f-1", "3:abc|2:p1"}));
  }
  faults.refuse(0);
  EXPECT_GT(failures, 20);
  onFailing->stopAuthorizationRecovery();
  settle();
}

TEST_F(StoreFaults, AFailedSettlementOnlyLowersTheCount) {
  execute("ALTER TABLE post_commit_obligation RENAME TO hidden");
  resultOf(onFailing->reconcileReminders());
  EXPECT_EQ(lastLine(), passLine(0, 1, 0, 0, 0));
}

} // namespace
} // namespace orvan
