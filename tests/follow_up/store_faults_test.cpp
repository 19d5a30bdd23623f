#include <sqlite3.h>

#include "OrvanStore/store_error.h"
#include "OrvanStore/transaction.h"
#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

/// Refuses one of the accesses that the store's statements ask leave for, on whichever connection it comes.
struct FaultPlan {
  std::atomic<int> accesses = 0;
  std::atomic<int> refused = 0;

  void refuse(int nth) {
    accesses = 0;
    refused = nth;
  }
  bool wasReached() const { return refused != 0 && accesses >= refused; }
};

int authorize(void* plan, int /*action*/, const char* /*one*/, const char* /*two*/, const char* /*three*/,
              const char* /*four*/) {
  auto& faults = *static_cast<FaultPlan*>(plan);
  return ++faults.accesses == faults.refused ? SQLITE_DENY : SQLITE_OK;
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
    std::string all;
    for (const auto* sql : {"SELECT group_concat(id || due_at || state || ifnull(completed_at, '')) FROM follow_up",
                            "SELECT group_concat(id || state) FROM open_loop",
                            "SELECT group_concat(candidate_key || due_at) FROM relationship_attention_candidate",
                            "SELECT group_concat(candidate_key) FROM relationship_attention_candidate_evidence"}) {
      all += value(sql) + "\n";
    }
    return all;
  }

  /// Fails each access of `operation` in turn: every fault must reach the caller as a store error with the transaction
  /// still the caller's to end, and rolling it back must leave nothing behind.
  template <typename OperationOnConnection>
  void expectEveryFaultToBeTheCallers(const char* name, OperationOnConnection operationOnConnection) {
    const std::string before = content();
    int faultsSeen = 0;
    for (int nth = 1;; ++nth) {
      faults.refuse(0);
      const bool finished = failing->withoutTransaction([&](Connection& connection) {
        const Transaction transaction{connection, TransactionKind::write};
        faults.refuse(nth);
        bool succeeded = false;
        try {
          operationOnConnection(connection);
          succeeded = true;
        } catch (const StoreError&) {
          EXPECT_TRUE(connection.isInTransaction()) << name << " at access " << nth;
        }
        const bool reached = faults.wasReached();
        faults.refuse(0);
        EXPECT_NE(succeeded, reached) << name << " swallowed the fault at access " << nth;
        return !reached;
      });
      EXPECT_EQ(content(), before) << name;
      if (finished) {
        break;
      }
      ++faultsSeen;
    }
    EXPECT_GT(faultsSeen, 2) << name << " was not put to the test";
  }

  FaultPlan faults;
  std::shared_ptr<DatabasePool> failing;
  std::unique_ptr<FollowUpScheduler> onFailing;
};

TEST_F(StoreFaults, EveryStatementsFaultIsLeftToTheCallersTransaction) {
  const FollowUpScheduler& target = *onFailing;
  const auto prior = target.followUp("f-2");
  const auto scheduledPrior = target.followUp("f-1");
  expectEveryFaultToBeTheCallers("upsert of a new id", [&](Connection& c) {
    target.upsert(c, "f-3", "abc", "p3", inOneHour(), operation, clock->now());
  });
  expectEveryFaultToBeTheCallers("upsert of a known id", [&](Connection& c) {
    target.upsert(c, "f-1", "abc", "p1", inOneHour() + 1h, operation, clock->now());
  });
  expectEveryFaultToBeTheCallers("upsert of a pair", [&](Connection& c) {
    target.upsert(c, "abc", "p1", inOneHour() + 1h, operation, clock->now());
  });
  expectEveryFaultToBeTheCallers("complete", [&](Connection& c) { target.complete(c, "f-1", clock->now()); });
  expectEveryFaultToBeTheCallers("complete a pair",
                                 [&](Connection& c) { target.complete(c, "abc", "p1", clock->now()); });
  expectEveryFaultToBeTheCallers("cancel", [&](Connection& c) { target.cancel(c, "f-1"); });
  expectEveryFaultToBeTheCallers("reopen", [&](Connection& c) { target.reopen(c, "f-2"); });
  expectEveryFaultToBeTheCallers("restore", [&](Connection& c) { target.restore(c, "f-1", prior); });
  expectEveryFaultToBeTheCallers("restore to scheduled",
                                 [&](Connection& c) { target.restore(c, "f-2", scheduledPrior); });
  expectEveryFaultToBeTheCallers("restore to nothing", [&](Connection& c) { target.restore(c, "f-1", std::nullopt); });
  expectEveryFaultToBeTheCallers("restore a pair", [&](Connection& c) { target.restore(c, "abc", "p1", prior); });
  expectEveryFaultToBeTheCallers("reproject", [&](Connection& c) { target.reprojectCandidates(c, "p1"); });
  expectEveryFaultToBeTheCallers("rows", [&](Connection& c) { target.rows(c, "abc"); });
  expectEveryFaultToBeTheCallers("refusal", [&](Connection& c) { target.refusal(c, "f-1", "abc", "p1"); });
  expectEveryFaultToBeTheCallers("settle", [&](Connection& c) {
    ActionEffectStore::settlePostCommit(c, operation, clock->now());
    ActionEffectStore::settleUndoneUnlinkObligations(c, {}, clock->now());
  });
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
    EXPECT_TRUE(!byId || byId == EffectReasonToken::reminderNotRegistered ||
                byId == EffectReasonToken::followUpNotLive);
    EXPECT_TRUE(!byPair || byPair == EffectReasonToken::followUpNotLive);
    EXPECT_TRUE(!resolved || resolved == EffectReasonToken::storeUnreadable);
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
  EXPECT_EQ(log->messages().back(),
            "follow-up reconcile cancelled=0 registered=1 settled=0 skipped_past_due=0 delivered_removed=0");
}

} // namespace
} // namespace orvan
