#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_delegate.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "follow_up_store_test.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto keyOfF1 = "2:p1|10:commitment|20:2026-03-04T09:15:00Z|32:openLoop:open-loop:follow-up:f-1";

class FollowUpEffects : public FollowUpStoreTest {
 protected:
  Token refusal(const std::string& id, const std::string& sourceObjectID, const std::string& personID) {
    return pool->read(
        [&](Connection& connection) { return scheduler.refusal(connection, id, sourceObjectID, personID); });
  }

  Token resolve() { return resultOf(scheduler.resolveAttention("f-1", clock->now())); }
  Token resolvePair() { return resultOf(scheduler.resolveAttention("abc", "p1", clock->now())); }
};

TEST_F(FollowUpEffects, AnIdMayBeWrittenWhenItIsNewOrScheduledForThePair) {
  EXPECT_EQ(refusal("f-1", "abc", "p1"), std::nullopt);
  schedule("f-1", inOneHour());
  EXPECT_EQ(refusal("f-1", "abc", "p1"), std::nullopt);
  EXPECT_EQ(refusal("f-1", "abc", "p2"), EffectReasonToken::followUpNotLive);
  EXPECT_EQ(refusal("f-1", "other", "p1"), EffectReasonToken::followUpNotLive);
  complete("f-1");
  EXPECT_EQ(refusal("f-1", "abc", "p1"), EffectReasonToken::followUpNotLive);
  EXPECT_EQ(scheduler.refusal("call", clock->now() - 61s, clock->now()), EffectReasonToken::followUpRefused);
  EXPECT_EQ(scheduler.refusal("call", clock->now() - 59s, clock->now()), std::nullopt);
}

TEST_F(FollowUpEffects, ResolvingAppliesToTheCandidateOfTheRowsOwnOrThePairsOpenLoop) {
  schedule("f-1", inOneHour());
  EXPECT_EQ(value("SELECT candidate_key FROM relationship_attention_candidate"), keyOfF1);
  EXPECT_EQ(resolve(), std::nullopt);
  EXPECT_THAT(dispositions->applied, ElementsAre(Pair(keyOfF1, AttentionItemAction::resolve())));
  EXPECT_EQ(state("f-1"), "scheduled");

  dispositions->applied.clear();
  EXPECT_EQ(resolvePair(), EffectReasonToken::followUpNotLive) << "the row's own open loop plays no part";
  EXPECT_THAT(dispositions->applied, IsEmpty());
  addOpenLoop("loop");
  addOpenLoop("open-loop:follow-up:3:abc|2:p1");
  execute("UPDATE follow_up SET open_loop_id = 'loop'");
  EXPECT_EQ(resolve(), std::nullopt);
  EXPECT_EQ(resolvePair(), std::nullopt);
  const std::string beginning = "2:p1|10:commitment|20:2026-01-01T00:00:00Z|";
  EXPECT_THAT(dispositions->applied,
              ElementsAre(Pair(beginning + "13:openLoop:loop", testing::_),
                          Pair(beginning + "39:openLoop:open-loop:follow-up:3:abc|2:p1", testing::_)));
}

TEST_F(FollowUpEffects, ResolvingWhatIsMissingUnusableOrRejectedGivesItsToken) {
  EXPECT_EQ(resolve(), EffectReasonToken::followUpNotLive);
  schedule("f-1", inOneHour());
  dispositions->fails = true;
  EXPECT_EQ(resolve(), EffectReasonToken::attentionNotResolved);
  EXPECT_EQ(state("f-1"), "scheduled");
  dispositions->fails = false;
  execute("UPDATE open_loop SET detected_at = 'yesterday'");
  EXPECT_EQ(resolve(), EffectReasonToken::followUpNotLive);
  execute("ALTER TABLE open_loop RENAME TO hidden");
  EXPECT_EQ(resolve(), EffectReasonToken::storeUnreadable);
  EXPECT_EQ(resolvePair(), EffectReasonToken::storeUnreadable);
  EXPECT_THAT(dispositions->applied, IsEmpty());
}

TEST_F(FollowUpEffects, ResolvingReachesTheDispositionStore) {
  const CredentialVault vault{std::make_shared<KeyInMemory>()};
  const EncryptedStore shared(folder.path() / "shared.db", vault);
  shared.create();
  pool = shared.openPool(StoreRole::programWriter);
  const auto real = std::make_shared<AttentionDispositionStore>(shared.file(), vault, loop.get_executor());
  scheduler =
      FollowUpScheduler{pool, notifications, real, AuthorizationRecheck::standard(), loop.get_executor(), clock, log};
  schedule("f-1", inOneHour());
  EXPECT_EQ(resolve(), std::nullopt);
  EXPECT_THAT(resultOf(real->records("p1")),
              ElementsAre(AttentionItemDispositionRecord{keyOfF1, AttentionItemState::resolved()}));
  cancel("f-1");
  EXPECT_EQ(count("relationship_attention_candidate"), "1") << "what the user decided about stays";
}

class NotificationPresentation : public FollowUpStoreTest {
 protected:
  std::shared_ptr<FollowUpNotificationDelegate> makeDelegate() {
    return std::make_shared<FollowUpNotificationDelegate>(pool, loop.get_executor(), loop.get_executor());
  }

  unsigned optionsFor(const std::string& identifier) {
    return resultOf(delegate->presentationOptions(identifier)).rawValue();
  }

  std::shared_ptr<FollowUpNotificationDelegate> delegate = makeDelegate();
};

TEST_F(NotificationPresentation, OnlyRemindersOfLiveFollowUpsAreShown) {
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour(), "Zoë|1:x");
  EXPECT_EQ(optionsFor("f-1"), 18U);
  EXPECT_EQ(optionsFor("3:abc|2:p1"), 18U) << "under the pair's key too";
  EXPECT_EQ(optionsFor(FollowUpScheduler::key("abc", "Zoë|1:x")), 18U);
  for (const char* other : {"03:abc|2:p1", "3:abc|2:p2", "another notification", ""}) {
    EXPECT_EQ(optionsFor(other), 0U) << other;
  }
  complete("f-1");
  EXPECT_EQ(optionsFor("f-1"), 0U);
  EXPECT_EQ(optionsFor("3:abc|2:p1"), 0U);
  execute("ALTER TABLE source_object RENAME TO hidden");
  EXPECT_EQ(optionsFor("f-2"), 0U) << "a store that cannot be read suppresses";
}

TEST_F(NotificationPresentation, InstallingNeverDisplacesAnotherDelegate) {
  delegate->installIfNeeded();
  delegate->installIfNeeded();
  EXPECT_EQ(center->delegate(), delegate);
  const auto foreign = makeDelegate();
  center->setDelegate(foreign);
  delegate->installIfNeeded();
  EXPECT_EQ(center->delegate(), foreign);
}

TEST_F(NotificationPresentation, ADueReminderIsShownInFrontWhileItsFollowUpIsLive) {
  delegate->installIfNeeded();
  center->setForeground(true);
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour(), "p2");
  resultOf(scheduler.reconcileReminders());
  complete("f-2");
  advance(1h);
  EXPECT_THAT(
      center->presentations(),
      testing::UnorderedElementsAre(Presentation{"f-1", PresentationOptions::banner | PresentationOptions::sound},
                                    Presentation{"f-2", PresentationOptions{}}));
  EXPECT_THAT(delivered(), ElementsAre("f-1"));
}

TEST_F(NotificationPresentation, AReleasedDelegateAnswersOnceWithSuppression) {
  schedule("f-1", inOneHour());
  std::vector<bool> suppressed;
  const auto ask = [&] {
    delegate->willPresent(center, Notification{clock->now(), request("f-1", clock->now())},
                          [&](PresentationOptions options) { suppressed.push_back(options.empty()); });
  };
  ask();
  delegate.reset();
  settle();
  EXPECT_THAT(suppressed, ElementsAre(true));
  delegate = makeDelegate();
  ask();
  loop.restart();
  loop.poll_one();
  delegate.reset();
  settle();
  EXPECT_EQ(suppressed.size(), 2U) << "gone while it reads the store";
}

} // namespace
} // namespace orvan
