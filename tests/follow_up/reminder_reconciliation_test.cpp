#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class ReminderReconciliation : public FollowUpStoreTest {
 protected:
  /// Runs a pass and gives its log line.
  std::string reconcile() {
    log->clear();
    resultOf(scheduler.reconcileReminders());
    return lastReconcileLine();
  }

  std::string lastReconcileLine() const {
    std::string last;
    for (const auto& message : log->messages()) {
      if (message.starts_with("follow-up reconcile")) {
        last = message;
      }
    }
    return last;
  }

  void owe(const std::string& operationID, const std::string& kind, const std::string& key) {
    execute(
        "INSERT INTO post_commit_obligation (operation_id, kind, notification_key, created_at) "
        "VALUES (?, ?, ?, '2026-03-04T00:00:00Z')",
        operationID, kind, key);
  }

  std::string settledAt(const std::string& kind) {
    return value("SELECT settled_at FROM post_commit_obligation WHERE kind = ?", kind);
  }
};

TEST_F(ReminderReconciliation, RegistersWhatIsMissingAndSettlesWhatWasOwedForIt) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  holdPending("f-2");
  owe(operation.text(), "reminder", "f-1");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=1 settled=1 skipped_past_due=0 delivered_removed=0");
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder"), Pair("f-2", "held before")));
  EXPECT_EQ(settledAt("reminder"), "2026-03-04T09:15:00Z");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=0 settled=0 skipped_past_due=0 delivered_removed=0");
}

TEST_F(ReminderReconciliation, WithdrawsWhatBelongsToNoLiveFollowUp) {
  addSource("gone");
  for (const auto* id : {"completed", "cancelled", "live"}) {
    schedule(id, inOneHour());
    holdPending(id);
  }
  schedule("sourceless", inOneHour(), "p1", "gone");
  holdPending("sourceless");
  holdPending("unknown");
  complete("completed");
  write([&](Connection& connection) { return scheduler.cancel(connection, "cancelled"); });
  tombstone("gone");
  schedule("live", inOneHour() + 24h);
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=4 registered=0 settled=0 skipped_past_due=0 delivered_removed=0");
  EXPECT_THAT(pending(), ElementsAre(Pair("live", "held before"))) << "only identifiers are compared";
}

TEST_F(ReminderReconciliation, ReplacesRemindersUnderOldFormsOfKey) {
  schedule("fu-v25:x", inOneHour());
  schedule("f-1", inOneHour());
  holdPending("fu-v25:x");
  holdPending("3:abc|2:p1");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=2 registered=2 settled=2 skipped_past_due=0 delivered_removed=0");
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder"), Pair("fu-v25:x", "Follow-up reminder")));
}

TEST_F(ReminderReconciliation, RemovesShownRemindersWhoseFollowUpIsGone) {
  for (const auto* id : {"f-1", "fu-v25:x", "gone"}) {
    schedule(id, clock->now() + 2h);
    holdPending(id);
  }
  advance(2h);
  complete("gone");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=0 settled=0 skipped_past_due=2 delivered_removed=1");
  EXPECT_THAT(delivered(), testing::UnorderedElementsAre("f-1", "fu-v25:x"));
}

TEST_F(ReminderReconciliation, WithoutAuthorizationItOnlyTakesAway) {
  schedule("f-1", inOneHour());
  holdPending("unknown");
  owe(operation.text(), "undone_unlink", "unknown");
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=1 registered=0 settled=0 skipped_past_due=0 delivered_removed=0");
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_EQ(settledAt("undone_unlink"), "(null)");
}

TEST_F(ReminderReconciliation, WhatHasPassedOrCannotBeReadIsNotRegistered) {
  schedule("f-1", clock->now() - 1s);
  schedule("f-2", clock->now());
  schedule("f-3", inOneHour());
  execute("UPDATE follow_up SET due_at = 'soon' WHERE id = 'f-3'");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=0 settled=0 skipped_past_due=2 delivered_removed=0");
}

TEST_F(ReminderReconciliation, AnOriginThatIsNoOperationSettlesNothingAndStillCounts) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  owe(operation.text(), "reminder", "f-1");
  execute("UPDATE follow_up SET origin_operation_id = NULL WHERE id = 'f-1'");
  execute("UPDATE follow_up SET origin_operation_id = '{' || origin_operation_id || '}' WHERE id = 'f-2'");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=2 settled=2 skipped_past_due=0 delivered_removed=0");
  EXPECT_EQ(settledAt("reminder"), "(null)");
}

TEST_F(ReminderReconciliation, UndoneLinksAreSettledOnceTheirReminderIsNoLongerPending) {
  schedule("f-1", inOneHour());
  holdPending("f-1");
  owe("operation-1", "undone_unlink", "f-1");
  reconcile();
  EXPECT_EQ(settledAt("undone_unlink"), "(null)");
  complete("f-1");
  reconcile();
  EXPECT_EQ(settledAt("undone_unlink"), "2026-03-04T09:15:00Z");
}

TEST_F(ReminderReconciliation, ARegistrationThatFailsIsLeftToTheNextPass) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=1 settled=1 skipped_past_due=0 delivered_removed=0");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=1 settled=1 skipped_past_due=0 delivered_removed=0");
}

TEST_F(ReminderReconciliation, OnePassRunsAtATime) {
  schedule("f-1", inOneHour());
  center->script(Operation::add, CenterBehaviour::hang());
  auto first = start(scheduler.reconcileReminders());
  const FollowUpScheduler copy = scheduler;
  EXPECT_TRUE(isReady(start(copy.reconcileReminders())));
  EXPECT_EQ(center->callCount(Operation::add), 1U);
  EXPECT_EQ(lastReconcileLine(), "") << "the second call ran no pass";
  center->answerHeld();
  settle();
  EXPECT_TRUE(isReady(first));
}

TEST_F(ReminderReconciliation, DrainingLetsThePassFinishTheItemInHandAndNoMore) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  center->script(Operation::add, CenterBehaviour::hang());
  auto pass = start(scheduler.reconcileReminders());
  auto drained = start(scheduler.stopAuthorizationRecoveryAndDrain());
  EXPECT_FALSE(isReady(drained));
  center->answerHeld();
  settle();
  EXPECT_TRUE(isReady(pass));
  EXPECT_TRUE(isReady(drained));
  EXPECT_EQ(lastReconcileLine(),
            "follow-up reconcile cancelled=0 registered=1 settled=1 skipped_past_due=0 delivered_removed=0");
  EXPECT_EQ(reconcile(), "") << "nothing starts any more";
}

TEST_F(ReminderReconciliation, StoppingEndsAPassBeforeItsNextStep) {
  holdPending("unknown");
  center->script(Operation::deliveredNotifications, CenterBehaviour::hang());
  auto pass = start(scheduler.reconcileReminders());
  scheduler.stopAuthorizationRecovery();
  center->answerHeld();
  settle();
  EXPECT_TRUE(isReady(pass));
  EXPECT_EQ(lastReconcileLine(),
            "follow-up reconcile cancelled=0 registered=0 settled=0 skipped_past_due=0 delivered_removed=0");
  EXPECT_EQ(pending().size(), 1U);
}

TEST_F(ReminderReconciliation, CancellingWithdrawsShownAndPendingAndLogsTheHashAlone) {
  schedule("f-1", inOneHour());
  holdPending("f-1");
  resultOf(scheduler.cancelReminder("f-1"));
  EXPECT_THAT(pending(), IsEmpty());
  holdPending("f-1");
  advance(2h);
  resultOf(scheduler.cancelReminder("f-1"));
  EXPECT_THAT(delivered(), IsEmpty());
  EXPECT_THAT(log->messages(), ElementsAre("follow-up cancel key_hash=3defc6e63240 outcome=not_pending"));
  EXPECT_EQ(log->entries().front().category, "follow-up-scheduler");
}

TEST_F(ReminderReconciliation, CancellingAnOldIdWithdrawsThePairsReminderToo) {
  schedule("fu-v25:x", inOneHour());
  schedule("f-1", inOneHour());
  holdPending("3:abc|2:p1");
  resultOf(scheduler.cancelReminder("f-1"));
  EXPECT_EQ(pending().size(), 1U);
  resultOf(scheduler.cancelReminder("fu-v25:unknown"));
  EXPECT_EQ(pending().size(), 1U);
  resultOf(scheduler.cancelReminder("fu-v25:x"));
  EXPECT_THAT(pending(), IsEmpty());
  holdPending("3:abc|2:p1");
  resultOf(scheduler.cancelReminder("abc", "p1"));
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_THAT(log->messages(), IsEmpty());
}

} // namespace
} // namespace orvan
