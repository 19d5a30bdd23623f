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
    return lastLine();
  }

  void owe(const std::string& kind, const std::string& key) {
    execute(
        "INSERT INTO post_commit_obligation (operation_id, kind, notification_key, created_at) "
        "VALUES (?, ?, ?, '2026-03-04T00:00:00Z')",
        operation.text(), kind, key);
  }

  std::string settledAt(const std::string& kind) {
    return value("SELECT settled_at FROM post_commit_obligation WHERE kind = ?", kind);
  }
};

TEST_F(ReminderReconciliation, RegistersWhatIsMissingAndSettlesWhatWasOwedForIt) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  holdPending("f-2");
  owe("reminder", "f-1");
  EXPECT_EQ(reconcile(),
            "follow-up reconcile cancelled=0 registered=1 settled=1 skipped_past_due=0 delivered_removed=0");
  EXPECT_THAT(pending(), ElementsAre(Pair("f-1", "Follow-up reminder"), Pair("f-2", "held before")));
  EXPECT_EQ(settledAt("reminder"), "2026-03-04T09:15:00Z");
  EXPECT_EQ(reconcile(), passLine(0, 0, 0, 0, 0));
}

TEST_F(ReminderReconciliation, WithdrawsWhatBelongsToNoLiveFollowUpAndReplacesOldFormsOfKey) {
  addSource("gone");
  for (const auto* id : {"completed", "cancelled", "live", "fu-v25:x"}) {
    schedule(id, inOneHour());
    holdPending(id);
  }
  schedule("sourceless", inOneHour(), "p1", "gone");
  for (const auto* key : {"sourceless", "unknown", "3:abc|2:p1"}) {
    holdPending(key);
  }
  complete("completed");
  cancel("cancelled");
  tombstone("gone");
  schedule("live", inOneHour() + 24h);
  EXPECT_EQ(reconcile(), passLine(6, 1, 1, 0, 0));
  EXPECT_THAT(pending(), ElementsAre(Pair("fu-v25:x", "Follow-up reminder"), Pair("live", "held before")))
      << "of live ones only identifiers are compared";
}

TEST_F(ReminderReconciliation, RemovesShownRemindersWhoseFollowUpIsGone) {
  for (const auto* id : {"f-1", "fu-v25:x", "gone"}) {
    schedule(id, clock->now() + 2h);
    holdPending(id);
  }
  advance(2h);
  complete("gone");
  EXPECT_EQ(reconcile(), passLine(0, 0, 0, 2, 1));
  EXPECT_THAT(delivered(), testing::UnorderedElementsAre("f-1", "fu-v25:x"));
}

TEST_F(ReminderReconciliation, SettlesUndoneLinksThatAreNoLongerPendingButWithoutAuthorizationOnlyTakesAway) {
  schedule("f-1", inOneHour());
  holdPending("f-1");
  owe("undone_unlink", "f-1");
  reconcile();
  EXPECT_EQ(settledAt("undone_unlink"), "(null)");
  complete("f-1");
  schedule("f-2", inOneHour());
  center->setAuthorizationStatus(AuthorizationStatus::denied);
  EXPECT_EQ(reconcile(), passLine(1, 0, 0, 0, 0));
  EXPECT_EQ(settledAt("undone_unlink"), "(null)");
  center->setAuthorizationStatus(AuthorizationStatus::authorized);
  EXPECT_EQ(reconcile(), passLine(0, 1, 1, 0, 0));
  EXPECT_EQ(settledAt("undone_unlink"), "2026-03-04T09:15:00Z");
}

TEST_F(ReminderReconciliation, WhatHasPassedOrCannotBeReadIsNotRegisteredAndWhatFailsIsLeftToTheNextPass) {
  schedule("f-1", clock->now() - 1s);
  schedule("f-2", clock->now());
  schedule("f-3", inOneHour());
  execute("UPDATE follow_up SET due_at = 'soon' WHERE id = 'f-3'");
  EXPECT_EQ(reconcile(), passLine(0, 0, 0, 2, 0));
  schedule("f-3", inOneHour());
  schedule("f-4", inOneHour());
  center->scriptCall(Operation::add, 1, CenterBehaviour::fail());
  EXPECT_EQ(reconcile(), passLine(0, 1, 1, 2, 0));
  EXPECT_EQ(reconcile(), passLine(0, 1, 1, 2, 0));
}

TEST_F(ReminderReconciliation, ACenterThatCannotSayWhatIsPendingHasNothingRegisteredAnewAndNothingSettled) {
  schedule("f-1", inOneHour());
  holdPending("unknown");
  owe("undone_unlink", "unknown");
  center->script(Operation::pendingRequests, CenterBehaviour::throwError());
  EXPECT_EQ(reconcile(), passLine(0, 0, 0, 0, 0));

  center->script(Operation::pendingRequests, CenterBehaviour::answer());
  center->scriptCall(Operation::pendingRequests, 2, CenterBehaviour::fail());
  EXPECT_EQ(reconcile(), passLine(1, 1, 1, 0, 0));
  EXPECT_EQ(settledAt("undone_unlink"), "(null)");
  reconcile();
  EXPECT_EQ(settledAt("undone_unlink"), "2026-03-04T09:15:00Z");
}

TEST_F(ReminderReconciliation, AnOriginThatIsNoOperationSettlesNothingAndStillCounts) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  owe("reminder", "f-1");
  execute("UPDATE follow_up SET origin_operation_id = NULL WHERE id = 'f-1'");
  execute("UPDATE follow_up SET origin_operation_id = '{' || origin_operation_id || '}' WHERE id = 'f-2'");
  EXPECT_EQ(reconcile(), passLine(0, 2, 2, 0, 0));
  EXPECT_EQ(settledAt("reminder"), "(null)");
}

TEST_F(ReminderReconciliation, OnePassRunsAtATimeAndDrainingLetsItFinishTheItemInHand) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour());
  center->script(Operation::add, CenterBehaviour::hang());
  auto first = start(scheduler.reconcileReminders());
  const FollowUpScheduler copy = scheduler;
  EXPECT_TRUE(isReady(start(copy.reconcileReminders())));
  EXPECT_EQ(center->callCount(Operation::add), 1U);
  EXPECT_THAT(log->messages(), IsEmpty()) << "the second call ran no pass";
  auto drained = start(copy.stopAuthorizationRecoveryAndDrain());
  EXPECT_FALSE(isReady(drained));
  answerHeld();
  EXPECT_TRUE(isReady(first));
  EXPECT_TRUE(isReady(drained));
  EXPECT_EQ(lastLine(), passLine(0, 1, 1, 0, 0));
  EXPECT_EQ(reconcile(), "") << "nothing starts any more";
  resultOf(scheduler.stopAuthorizationRecoveryAndDrain());
}

TEST_F(ReminderReconciliation, AfterTheItemInHandADrainedPassTakesNoFurtherStep) {
  schedule("f-1", inOneHour());
  owe("undone_unlink", "gone");
  center->script(Operation::add, CenterBehaviour::hang());
  start(scheduler.reconcileReminders());
  auto drained = start(scheduler.stopAuthorizationRecoveryAndDrain());
  answerHeld();
  EXPECT_TRUE(isReady(drained));
  EXPECT_EQ(lastLine(), passLine(0, 1, 1, 0, 0));
  EXPECT_EQ(settledAt("undone_unlink"), "(null)");
}

TEST_F(ReminderReconciliation, StoppingEndsAPassBeforeItsNextStep) {
  holdPending("unknown");
  center->script(Operation::deliveredNotifications, CenterBehaviour::hang());
  auto pass = start(scheduler.reconcileReminders());
  scheduler.stopAuthorizationRecovery();
  answerHeld();
  EXPECT_TRUE(isReady(pass));
  EXPECT_EQ(lastLine(), passLine(0, 0, 0, 0, 0));
  EXPECT_EQ(pending().size(), 1U);
}

TEST_F(ReminderReconciliation, APortThatThrowsEndsAPassWithItsLineAndNoCancellation) {
  schedule("fu-v25:x", inOneHour());
  int nth = 0;
  for (bool threw = true; threw;) {
    const auto port = std::make_shared<PlainPort>(++nth);
    notifications = port;
    const FollowUpScheduler target = makeScheduler(pool);
    execute("DELETE FROM post_commit_obligation");
    owe("undone_unlink", "f-1");
    EXPECT_NO_THROW(resultOf(target.reconcileReminders())) << nth;
    EXPECT_TRUE(lastLine().starts_with("follow-up reconcile ")) << nth;
    threw = port->left <= 0;
    EXPECT_EQ(settledAt("undone_unlink") == "(null)", threw) << nth << ": a failed question settles nothing";
    port->left = 1;
    EXPECT_NO_THROW(resultOf(target.cancelReminder("fu-v25:x"))) << nth;
    EXPECT_TRUE(lastLine().starts_with("follow-up cancel ")) << nth;
    EXPECT_NO_THROW(resultOf(target.cancelReminder("abc", "p1"))) << nth;
  }
  EXPECT_GT(nth, 5);
}

TEST_F(ReminderReconciliation, CancellingWithdrawsShownAndPendingAndLogsTheHashAlone) {
  holdPending("f-1");
  resultOf(scheduler.cancelReminder("f-1"));
  EXPECT_THAT(pending(), IsEmpty());
  EXPECT_THAT(log->messages(), ElementsAre("follow-up cancel key_hash=3defc6e63240 outcome=cancelled"));
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
