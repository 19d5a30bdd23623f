#include "application/agent/desktop/desktop_notifications.h"

#include <gmock/gmock.h>

#include <fstream>
#include <optional>

#include "bus_loop_test.h"
#include "recorded_desktop.h"

namespace orvan {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Manner = RecordedDesktop::Manner;

class DesktopNotificationsTest : public BusLoopTest, public PopupListener {
 protected:
  const std::vector<std::string> all{"actions", "body", "body-markup", "x-dunst-stack-tag"};

  void SetUp() override {
    BusLoopTest::SetUp();
    if (!IsSkipped()) {
      connection = BusConnection::toAddress(loop.get_executor(), bus.address());
    }
  }

  void start(std::chrono::milliseconds callTimeout = DesktopNotifications::usualCallTimeout) {
    notifications.emplace(*connection, loop.get_executor(), std::make_shared<SystemClock>(), callTimeout);
    notifications->setListener(this);
    notifications->start();
  }

  static Popup popup(std::string summary, std::string body = {}) {
    return {.tag = "orvan-1",
            .applicationName = "Orvan",
            .summary = std::move(summary),
            .body = std::move(body),
            .actions = {{.key = "done", .label = "Done"}}};
  }

  PopupOutcome outcomeOf(Popup popup) {
    std::optional<PopupOutcome> outcome;
    notifications->show(std::move(popup), [&](PopupOutcome given) {
      log.emplace_back("outcome");
      outcome = std::move(given);
    });
    EXPECT_FALSE(outcome.has_value());
    EXPECT_TRUE(runUntil([&] { return outcome.has_value(); }));
    return *outcome;
  }

  void popupActionInvoked(const ShownPopup& popup, std::string_view key, const std::string& token) override {
    log.push_back(std::to_string(popup.number) + " " + std::string{key} + " " + token);
  }
  void popupClosed(const ShownPopup& popup) override { log.push_back(std::to_string(popup.number) + " closed"); }
  void popupServiceChanged() override { log.emplace_back(notifications->isThere() ? "there" : "gone"); }

  std::unique_ptr<BusConnection> connection;
  std::optional<DesktopNotifications> notifications;
  std::vector<std::string> log;
};

TEST_F(DesktopNotificationsTest, ShowsTextAsItIsAndTellsWhatTheUserDoes) {
  RecordedDesktop desktop(loop.get_executor(), bus.address(), all);
  ASSERT_TRUE(runUntil([&] { return desktop.isThere; }));
  start();
  ASSERT_TRUE(runUntil([&] { return notifications->isThere(); }));
  EXPECT_TRUE(notifications->replacesByTag());
  log.clear();
  // Pressed before the service has answered.
  desktop.onShow = [&](const RecordedDesktop::Shown& shown) { desktop.press(shown.number, "done"); };
  const auto first = outcomeOf(popup("Tom & <Ada>", "a < b & c"));
  ASSERT_TRUE(first.has_value());
  desktop.onShow = nullptr;
  EXPECT_EQ(desktop.shown.front().summary, "Tom & <Ada>");
  EXPECT_EQ(desktop.shown.front().body, "a &lt; b &amp; c");
  EXPECT_THAT(desktop.shown.front().actions, ElementsAre("done", "Done"));
  EXPECT_EQ(desktop.shown.front().tag, "orvan-1");
  ASSERT_TRUE(runUntil([&] { return log.size() == 2; }));
  desktop.press(1, "default", "token-1");
  desktop.close(1);
  ASSERT_TRUE(runUntil([&] { return log.size() == 4; }));
  EXPECT_THAT(log, ElementsAre("outcome", "1 done ", "1 default token-1", "1 closed"));
  notifications->withdraw(*first);
  EXPECT_TRUE(runUntil([&] { return desktop.withdrawn.size() == 1; }));
}

TEST_F(DesktopNotificationsTest, TellsApartAServiceThatGoesIsSilentTalksNonsenseOrRefuses) {
  start(std::chrono::milliseconds{300});
  EXPECT_EQ(outcomeOf(popup("none")), std::unexpected{PresenterError::noService});
  std::optional<RecordedDesktop> desktop(std::in_place, loop.get_executor(), bus.address(), std::vector<std::string>{});
  ASSERT_TRUE(runUntil([&] { return log.back() == "there"; }));
  EXPECT_FALSE(notifications->replacesByTag());
  const auto shown = outcomeOf(popup("plain", "a & b"));
  EXPECT_EQ(desktop->shown.front().body, "a & b");
  EXPECT_THAT(desktop->shown.front().actions, IsEmpty()) << "it cannot show buttons";
  desktop->manner = Manner::isSilent;
  EXPECT_EQ(outcomeOf(popup("silent")), std::unexpected{PresenterError::timedOut});
  desktop->manner = Manner::answersNonsense;
  EXPECT_EQ(outcomeOf(popup("nonsense")), std::unexpected{PresenterError::timedOut});
  desktop->manner = Manner::refuses;
  EXPECT_EQ(outcomeOf(popup("refused")), std::unexpected{PresenterError::refused});
  desktop->manner = Manner::isSilent;
  desktop->onShow = [&](const auto& /*shown*/) { boost::asio::post(loop, [&] { desktop.reset(); }); };
  EXPECT_EQ(outcomeOf(popup("vanishes")), std::unexpected{PresenterError::serviceVanished});
  ASSERT_TRUE(runUntil([&] { return !notifications->isThere(); }));
  EXPECT_THAT(log, Contains("gone"));

  const RecordedDesktop another(loop.get_executor(), bus.address(), all);
  ASSERT_TRUE(runUntil([&] { return log.back() == "there"; }));
  notifications->withdraw(*shown); // Its number is another popup's there.
  EXPECT_TRUE(outcomeOf(popup("again")).has_value());
  EXPECT_THAT(another.withdrawn, IsEmpty());
}

TEST_F(DesktopNotificationsTest, CountsAServiceThatTheBusCannotStartAsNone) {
  std::ofstream{folder.path() / "bus" / "services" / "org.freedesktop.Notifications.service"}
      << "[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=/bin/false\n";
  std::optional<bool> isReloaded;
  connection->call(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"}, "ReloadConfig", [](BusWriter&) {},
      std::chrono::seconds{5}, [&](const BusAnswer& answer) { isReloaded = answer.has_value(); });
  ASSERT_TRUE(runUntil([&] { return isReloaded.has_value(); }));
  start();
  ASSERT_TRUE(runUntil([&] { return notifications->isThere(); }));
  EXPECT_EQ(outcomeOf(popup("none")), std::unexpected{PresenterError::noService});
  EXPECT_FALSE(notifications->isThere());
}

} // namespace
} // namespace orvan
