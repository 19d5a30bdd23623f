#include "application/desktop/follow_ups_model.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QCoreApplication>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "OrvanTestSupport/in_memory_notification_center.h"
#include "OrvanTestSupport/manual_clock.h"
#include "application/desktop/reminder_choices.h"
#include "application/session/store_creation.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

/// A window without its looks on a store in which there is only Ada, who is shown, and a centre of the process's own.
class RemindersInTheWindow : public testing::Test {
 protected:
  RemindersInTheWindow() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
    createStoreAndKey(settings_);
    Session(settings_).writableStore().write([](Connection& store) {
      store.execute("INSERT INTO person (id, display_name, created_at) VALUES ('ada', 'Ada', '')");
    });
    NotificationCenter::setCurrent(center_);
    window_.start();
    window_.choose("ada");
    EXPECT_TRUE(waitUntil([this] { return window_.person()->displayName() == "Ada"; }));
  }
  ~RemindersInTheWindow() override { NotificationCenter::setCurrent(nullptr); }

  static bool waitUntil(const std::function<bool()>& holds) {
    const auto limit = std::chrono::steady_clock::now() + 20s;
    while (!holds() && std::chrono::steady_clock::now() < limit) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return holds();
  }

  std::size_t reminders() const {
    return waitFor(sharedWorkExecutor(), UserNotificationsFollowUpScheduling{}.pendingRequestKeys()).size();
  }
  FollowUpState stateInStore() const {
    return Session(settings_)
        .readableStore()
        .read([](Connection& store) { return followUps(FollowUpChoice::all, store); })
        .back()
        .state;
  }
  qsizetype shown() { return window_.person()->followUps().size(); }
  QString idOfFirst() { return window_.person()->followUps().front().toMap().value("id").toString(); }
  void remindTomorrow(const QString& about) {
    followUps_.choices();
    const auto before = reminders();
    followUps_.remindAtChoice(static_cast<int>(followUps_.choices().size()) - 2, about);
    EXPECT_TRUE(waitUntil([&] { return reminders() == before + 1; }));
  }

  ScratchFolder folder_;
  const SessionSettings settings_{.store = folder_.path() / "store.db", .keyFile = folder_.path() / "key"};
  const std::shared_ptr<InMemoryNotificationCenter> center_ = std::make_shared<InMemoryNotificationCenter>(
      sharedWorkExecutor(), std::make_shared<SystemClock>(), AuthorizationStatus::authorized);
  // The centre has the machine's clock, so what is due for the window may still be pending there.
  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>(SystemClock().now());
  QtLoop loop_;
  WindowReminders reminders_{settings_, [] {
                               AgentState state;
                               state.service = "a desktop";
                               return state;
                             }};
  StoreThread store_{settings_};
  WindowModel window_{loop_, store_, *clock_, std::nullopt};
  FollowUpsModel followUps_{loop_, store_, reminders_, window_, *clock_, std::nullopt};
};

TEST_F(RemindersInTheWindow, AreSetWithTheFollowUpAndWithdrawnWhenItCannotBeUndoneAnyMoreThatItIsDone) {
  remindTomorrow(" Ask how the ferry was ");
  EXPECT_TRUE(waitUntil([this] { return shown() == 1; }));
  EXPECT_EQ(window_.person()->followUps().front().toMap().value("said"), "Ask how the ferry was");
  EXPECT_TRUE(waitUntil([this] { return window_.noticeText().startsWith("You will be reminded on "); }));

  followUps_.complete(idOfFirst());
  EXPECT_TRUE(waitUntil([this] { return shown() == 0; }));
  window_.undo();
  EXPECT_TRUE(waitUntil([this] { return shown() == 1; }));
  followUps_.complete(idOfFirst());
  EXPECT_EQ(stateInStore(), FollowUpState::scheduled);
  EXPECT_EQ(reminders(), 1U);
  clock_->advance(10s);
  EXPECT_TRUE(waitUntil([this] { return reminders() == 0; }));
  EXPECT_EQ(stateInStore(), FollowUpState::completed);
}

TEST_F(RemindersInTheWindow, AreWithdrawnWithTheRowOfTheirFollowUpEvenIfTheWindowClosesThen) {
  remindTomorrow("");
  clock_->advance(48h);
  window_.readAgain();
  EXPECT_TRUE(waitUntil([this] { return window_.list()->count() == 1; }));
  window_.dismiss();
  EXPECT_EQ(window_.list()->count(), 0);
  EXPECT_EQ(reminders(), 1U);
  window_.saveAtEnd();
  while (reminders() != 0) {
  }
  EXPECT_EQ(stateInStore(), FollowUpState::cancelled);
}

TEST_F(RemindersInTheWindow, SayWhatIsInTheirWay) {
  center_->setAuthorizationStatus(AuthorizationStatus::denied);
  followUps_.remindAt("2999-01-01", "14:00", "");
  EXPECT_TRUE(waitUntil([this] { return window_.noticeText().contains("reminders are not allowed"); }));
  EXPECT_TRUE(waitUntil([this] { return shown() == 1; })) << "it is kept all the same";
}

TEST(ReminderChoices, LeaveOutAnEveningThatIsPast) {
  setenv("TZ", "UTC", 1);
  const auto choicesAt = [](const char* asOf) { return reminderChoices(*parseInternetDateTime(asOf)); };
  // A Monday.
  ASSERT_EQ(choicesAt("2026-03-09T17:59:00Z").size(), 3U);
  EXPECT_EQ(choicesAt("2026-03-09T17:59:00Z").front().moment, *parseInternetDateTime("2026-03-09T18:00:00Z"));
  ASSERT_EQ(choicesAt("2026-03-09T18:00:00Z").size(), 2U);
  EXPECT_EQ(choicesAt("2026-03-09T18:00:00Z").back().moment, *parseInternetDateTime("2026-03-16T09:00:00Z"));
  const auto asOf = *parseInternetDateTime("2026-03-09T12:00:00Z");
  EXPECT_EQ(reminderMoment("2026-03-09", "14", asOf), *parseInternetDateTime("2026-03-09T14:00:00Z"));
  EXPECT_EQ(reminderMoment("2026-03-09", "11:00", asOf), std::nullopt);
  EXPECT_EQ(reminderMoment("2026-03-09", "half", asOf), std::nullopt);
}

} // namespace
} // namespace orvan
