#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_delegate.h"
#include "OrvanStore/store_error.h"
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
};

TEST_F(FollowUpEffects, AnIdMayBeWrittenWhenItIsNewOrScheduledForThePair) {
  EXPECT_EQ(refusal("f-1", "abc", "p1"), std::nullopt);
  schedule("f-1", inOneHour());
  EXPECT_EQ(refusal("f-1", "abc", "p1"), std::nullopt);
  EXPECT_EQ(refusal("f-1", "abc", "p2"), EffectReasonToken::followUpNotLive);
  EXPECT_EQ(refusal("f-1", "other", "p1"), EffectReasonToken::followUpNotLive);
  complete("f-1");
  EXPECT_EQ(refusal("f-1", "abc", "p1"), EffectReasonToken::followUpNotLive);
  EXPECT_EQ(scheduler.refusal(" ", inOneHour(), clock->now()), EffectReasonToken::followUpRefused);
  EXPECT_EQ(scheduler.refusal("call", clock->now() - 61s, clock->now()), EffectReasonToken::followUpRefused);
  EXPECT_EQ(scheduler.refusal("call", inOneHour(), clock->now()), std::nullopt);
}

TEST_F(FollowUpEffects, ResolvingAppliesToTheCandidateTheFollowUpWasProjectedAs) {
  schedule("f-1", inOneHour());
  EXPECT_EQ(value("SELECT candidate_key FROM relationship_attention_candidate"), keyOfF1);
  EXPECT_EQ(resultOf(scheduler.resolveAttention("f-1", clock->now())), std::nullopt);
  EXPECT_THAT(dispositions->applied, ElementsAre(Pair(keyOfF1, AttentionItemAction::resolve())));
  EXPECT_EQ(scheduler.followUp("f-1")->state(), "scheduled");
}

TEST_F(FollowUpEffects, ResolvingByIdGoesByTheRowsOwnOpenLoop) {
  schedule("f-1", inOneHour());
  execute(
      "INSERT INTO open_loop VALUES ('loop', 'p1', 'scheduled_followup', NULL, '2026-01-01T00:00:00Z', 'open', '')");
  execute("UPDATE follow_up SET open_loop_id = 'loop'");
  resultOf(scheduler.resolveAttention("f-1", clock->now()));
  EXPECT_THAT(dispositions->applied,
              ElementsAre(Pair("2:p1|10:commitment|20:2026-01-01T00:00:00Z|13:openLoop:loop", testing::_)));
}

TEST_F(FollowUpEffects, ResolvingByPairGoesByThePairsOpenLoop) {
  schedule("f-1", inOneHour());
  const auto resolvePair = [this] { return resultOf(scheduler.resolveAttention("abc", "p1", clock->now())); };
  EXPECT_EQ(resolvePair(), EffectReasonToken::followUpNotLive) << "the row's own open loop plays no part";
  EXPECT_THAT(dispositions->applied, IsEmpty());
  execute(
      "INSERT INTO open_loop VALUES ('open-loop:follow-up:3:abc|2:p1', 'p1', 'scheduled_followup', NULL, "
      "'2026-01-01T00:00:00Z', 'open', '')");
  EXPECT_EQ(resolvePair(), std::nullopt);
  EXPECT_EQ(dispositions->applied.size(), 1U);
}

TEST_F(FollowUpEffects, ResolvingWhatIsMissingUnusableOrRejectedGivesItsToken) {
  const auto resolve = [this] { return resultOf(scheduler.resolveAttention("f-1", clock->now())); };
  EXPECT_EQ(resolve(), EffectReasonToken::followUpNotLive);
  schedule("f-1", inOneHour());
  dispositions->fails = true;
  EXPECT_EQ(resolve(), EffectReasonToken::attentionNotResolved);
  EXPECT_EQ(scheduler.followUp("f-1")->state(), "scheduled");
  dispositions->fails = false;
  execute("UPDATE open_loop SET detected_at = 'yesterday'");
  EXPECT_EQ(resolve(), EffectReasonToken::followUpNotLive);
  execute("ALTER TABLE open_loop RENAME TO hidden");
  EXPECT_EQ(resolve(), EffectReasonToken::storeUnreadable);
  EXPECT_EQ(resultOf(scheduler.resolveAttention("abc", "p1", clock->now())), EffectReasonToken::storeUnreadable);
  EXPECT_THAT(dispositions->applied, IsEmpty());
}

/// A pool that shares its file with a real disposition store.
std::shared_ptr<DatabasePool> openPoolWithDerivedKey(const std::filesystem::path& file) {
  DatabasePool::Configuration configuration;
  configuration.connection.prepare = [](Connection& connection) {
    connection.key(KeyInMemory{}.loadLocalStoreKey()->bytes());
    connection.executeScript("PRAGMA cipher_page_size = 4096; PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL");
  };
  return std::make_shared<DatabasePool>(file, std::move(configuration));
}

TEST_F(FollowUpEffects, ResolvingReachesTheDispositionStore) {
  const auto file = folder.path() / "shared.db";
  const auto store = openPoolWithDerivedKey(file);
  store->write(createCanonicalSchema);
  const auto real = std::make_shared<AttentionDispositionStore>(file, CredentialVault{std::make_shared<KeyInMemory>()},
                                                                loop.get_executor());
  const FollowUpScheduler onShared{
      store, notifications, real, AuthorizationRecheck::standard(), loop.get_executor(), clock, log};
  store->write([&](Connection& connection) {
    return onShared.upsert(connection, "f-1", "abc", "p1", inOneHour(), operation, clock->now());
  });
  EXPECT_EQ(resultOf(onShared.resolveAttention("f-1", clock->now())), std::nullopt);
  EXPECT_THAT(resultOf(real->records("p1")),
              ElementsAre(AttentionItemDispositionRecord{keyOfF1, AttentionItemState::resolved()}));
  store->write([&](Connection& connection) { return onShared.cancel(connection, "f-1"); });
  EXPECT_EQ(store->read([](Connection& connection) {
    return connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_candidate");
  }),
            1)
      << "what the user decided about stays";
}

/// Answers nothing; it only takes the place.
class ForeignDelegate final : public NotificationCenterDelegate {
 public:
  void willPresent(std::shared_ptr<NotificationCenter> /*center*/, Notification /*notification*/,
                   std::function<void(PresentationOptions)> completionHandler) override {
    completionHandler(PresentationOptions::sound);
  }
};

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
  EXPECT_EQ(optionsFor("03:abc|2:p1"), 0U);
  EXPECT_EQ(optionsFor("3:abc|2:p2"), 0U);
  EXPECT_EQ(optionsFor("another notification"), 0U);
  EXPECT_EQ(optionsFor(""), 0U);
  complete("f-1");
  EXPECT_EQ(optionsFor("f-1"), 0U);
  EXPECT_EQ(optionsFor("3:abc|2:p1"), 0U);
}

TEST_F(NotificationPresentation, AStoreThatCannotBeReadSuppresses) {
  schedule("f-1", inOneHour());
  execute("ALTER TABLE source_object RENAME TO hidden");
  EXPECT_EQ(optionsFor("f-1"), 0U);
}

TEST_F(NotificationPresentation, InstallingNeverDisplacesAnotherDelegate) {
  delegate->installIfNeeded();
  delegate->installIfNeeded();
  EXPECT_EQ(center->delegate(), delegate);
  const auto foreign = std::make_shared<ForeignDelegate>();
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
  std::vector<unsigned> answers;
  const Notification due{clock->now(), request("f-1", {}, clock->now())};
  delegate->willPresent(center, due, [&](PresentationOptions options) { answers.push_back(options.rawValue()); });
  delegate.reset();
  settle();
  EXPECT_EQ(answers.size(), 1U);
  delegate = makeDelegate();
  boost::asio::post(loop, [this] { delegate.reset(); });
  delegate->willPresent(center, due, [&](PresentationOptions options) { answers.push_back(options.rawValue()); });
  settle();
  EXPECT_EQ(answers.size(), 2U);
}

} // namespace
} // namespace orvan
