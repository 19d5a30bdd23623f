#include "application/desktop/first_start_model.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QCoreApplication>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/manual_clock.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

std::string mail(int number, const std::string& from, const std::string& to) {
  const auto id = std::to_string(number) + from;
  return "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <" + id + ">\nFrom: Somebody <" + from + ">\nTo: " + to +
         "\nDate: Mon, 09 Mar 2026 10:00:00 +0000\nSubject: boat\n\nThe boat is ready.\n\n";
}

/// A computer on which Thunderbird has mail and no store was made yet.
class FirstStart : public testing::Test {
 protected:
  FirstStart() {
    setenv("TZ", "UTC", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
    deriveKeysQuickly();
    std::filesystem::create_directories(mailFolder());
    std::ofstream(home() / ".thunderbird/profiles.ini") << "[Profile0]\nIsRelative=1\nPath=p\n";
    std::ofstream(mailFolder() / "Inbox")
        << mail(1, "ada@hill.example", "robin@orvan.example") << mail(2, "bo@hill.example", "robin@orvan.example");
    std::ofstream(mailFolder() / "Sent") << mail(3, "robin@orvan.example", "cleo@hill.example");
    window_.start();
  }

  std::filesystem::path home() const { return folder_.path() / "home"; }
  std::filesystem::path mailFolder() const { return home() / ".thunderbird/p/Mail/Local Folders"; }
  SessionSettings settings() const {
    return {.store = folder_.path() / "data/store.db", .keyFile = folder_.path() / "data/key"};
  }

  static bool waitUntil(const std::function<bool()>& holds) {
    const auto limit = std::chrono::steady_clock::now() + 20s;
    while (!holds() && std::chrono::steady_clock::now() < limit) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return holds();
  }
  bool waitForStep(FirstStartModel::Step step) {
    return waitUntil([this, step] { return start_.step() == step; });
  }
  void chooseAll() {
    start_.look();
    ASSERT_TRUE(waitForStep(FirstStartModel::Choosing));
    start_.goOn();
    ASSERT_TRUE(waitForStep(FirstStartModel::ChoosingAddresses));
  }

  ScratchFolder folder_;
  const std::shared_ptr<ManualClock> clock_ =
      std::make_shared<ManualClock>(*parseInternetDateTime("2026-03-10T12:00:00Z"));
  QtLoop loop_;
  StoreThread store_{settings()};
  WindowModel window_{loop_, store_, *clock_, std::nullopt};
  FirstStartModel start_{loop_,        store_,  *clock_,
                         std::nullopt, window_, {home(), home() / ".local/share", home() / ".config", {}}};
};

TEST_F(FirstStart, LeadsFromNothingToAList) {
  std::ofstream(home() / ".thunderbird/p/prefs.js")
      << R"(user_pref("mail.identity.id1.useremail", "Robin@home.example");)";
  EXPECT_TRUE(waitUntil([this] { return window_.page() == WindowModel::NoStore; }));
  chooseAll();
  EXPECT_EQ(start_.sources()->countChosen(), 1);
  QStringList addresses;
  for (const auto& row : start_.addresses()->rows()) {
    addresses.append(row.isChosen ? row.title : row.title + "?");
  }
  EXPECT_EQ(addresses.join(" "), "robin@home.example robin@orvan.example") << "and nobody who wrote";
  EXPECT_FALSE(std::filesystem::exists(settings().store)) << "nothing is made before the user asks for it";

  start_.begin();
  EXPECT_TRUE(waitUntil([this] { return window_.hasPeople() && start_.reading()->state() == ReadingModel::Quiet; }));
  EXPECT_EQ(start_.reading()->end().countNew, 3);
  EXPECT_EQ(window_.list()->count(), 2);

  std::ofstream(mailFolder() / "Inbox", std::ios::app) << mail(4, "dee@hill.example", "robin@orvan.example");
  start_.readNew();
  EXPECT_TRUE(waitUntil([this] { return window_.list()->count() == 3; }));
}

TEST_F(FirstStart, SaysWhatIsWrongAndLosesNothingOfWhatWasChosen) {
  chooseAll();
  start_.addPath(QString::fromStdString(home() / "nowhere"));
  EXPECT_TRUE(waitUntil([this] { return start_.pathFault().contains("There is no such file or folder"); }));
  EXPECT_FALSE(start_.addAddress("robin"));
  EXPECT_TRUE(start_.addAddress("Robin@Work.example"));

  std::ofstream(folder_.path() / "data") << "a file where the folder should be";
  start_.begin();
  EXPECT_TRUE(waitUntil([this] { return start_.failure().contains("folder"); }));
  EXPECT_EQ(start_.step(), FirstStartModel::ChoosingAddresses);
  EXPECT_EQ(start_.addresses()->countChosen(), 2);

  std::filesystem::remove(folder_.path() / "data");
  start_.begin();
  EXPECT_TRUE(waitUntil([this] { return window_.list()->count() == 2; }));
}

TEST_F(FirstStart, GoesOnWithWhatWasStoppedAlsoInANewWindow) {
  chooseAll();
  // Before what reads has opened the store.
  const auto stopping = QObject::connect(start_.reading(), &ReadingModel::stateChanged, start_.reading(),
                                         [this] { start_.reading()->stop(); });
  start_.begin();
  ASSERT_TRUE(waitUntil([this] { return start_.reading()->state() == ReadingModel::Stopped; }));
  QObject::disconnect(stopping);
  {
    WindowModel window(loop_, store_, *clock_, std::nullopt);
    FirstStartModel next(loop_, store_, *clock_, std::nullopt, window, {home(), home(), home(), {}});
    window.start();
    EXPECT_TRUE(waitUntil([&next] { return next.reading()->state() == ReadingModel::Unfinished; }));
  }
  start_.readNew();
  EXPECT_TRUE(waitUntil([this] { return window_.list()->count() == 2; }));
}

} // namespace
} // namespace orvan
