#include "application/desktop/window_model.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QCoreApplication>
#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/manual_clock.h"
#include "application/cli/command_line.h"
#include "application/desktop/corrections_model.h"
#include "application/desktop/overview_model.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

constexpr auto noon = "2026-03-10T12:00:00Z";

/// A mail of 9 March to Robin, who did not answer.
std::string mail(const std::string& name) {
  return "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <" + name + "@hill.example>\nFrom: " + name + " Marsh <" +
         name + "@hill.example>\nTo: robin@orvan.example\nDate: Mon, 09 Mar 2026 10:00:00 +0000\nSubject: " + name +
         "'s boat\n\nThe boat is ready.\n\n";
}

/// A window without its looks, on a store in which Ada, Bo and Cleo wait for an answer.
class Window : public testing::Test {
 protected:
  Window() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
    std::ofstream(folder_.path() / "mbox") << mail("Ada") + mail("Bo") + mail("Cleo");
    run({"init"});
    run({"import", "--me", "robin@orvan.example", "--mbox", (folder_.path() / "mbox").string()});
    model_.start();
    EXPECT_TRUE(waitUntil([this] { return model_.list()->count() == 3; }));
  }

  SessionSettings settings() const { return {.store = folder_.path() / "store.db", .keyFile = folder_.path() / "key"}; }

  void run(std::vector<std::string> words) const {
    words.insert(words.begin(), {"orvan", "--as-of", noon, "--store", settings().store.string(), "--key-file",
                                 settings().keyFile.string()});
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    testing::internal::CaptureStdout();
    EXPECT_EQ(runCommandLine(static_cast<int>(arguments.size()), arguments.data()), 0);
    testing::internal::GetCapturedStdout();
  }

  std::size_t decisionsInStore() {
    std::size_t count = 0;
    Session session(settings());
    for (const auto& person : {"ada@hill.example", "bo@hill.example", "cleo@hill.example"}) {
      count += session.records(session.personKeyOf(person)).size();
    }
    return count;
  }

  static bool waitUntil(const std::function<bool()>& holds) {
    const auto limit = std::chrono::steady_clock::now() + 20s;
    while (!holds() && std::chrono::steady_clock::now() < limit) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return holds();
  }

  ScratchFolder folder_;
  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>(*parseInternetDateTime(noon));
  QtLoop loop_;
  StoreThread store_{settings()};
  WindowModel model_{loop_, store_, *clock_, std::nullopt};
};

TEST_F(Window, KeepsWhatCanBeUndoneFromTheStoreAndSavesItAtOnceWhenAnotherRowIsActedOn) {
  const auto first = model_.chosen();
  model_.dismiss();
  EXPECT_EQ(model_.list()->count(), 2);
  EXPECT_EQ(model_.notice(), WindowModel::CanUndo);
  EXPECT_NE(model_.chosen(), first);
  model_.undo();
  EXPECT_EQ(model_.list()->count(), 3);
  EXPECT_EQ(model_.chosen(), first);
  clock_->advance(11s);
  EXPECT_EQ(decisionsInStore(), 0U);

  model_.dismiss();
  EXPECT_EQ(decisionsInStore(), 0U);
  model_.snoozeUntil("2026-03-12");
  EXPECT_TRUE(waitUntil([this] { return decisionsInStore() == 1; }));
  EXPECT_EQ(model_.list()->count(), 1);
  EXPECT_FALSE(model_.mayClose()) << "the second one is being saved";
  bool isReady = false;
  QObject::connect(&model_, &WindowModel::readyToClose, &model_, [&isReady] { isReady = true; });
  EXPECT_TRUE(waitUntil([&isReady] { return isReady; }));
  EXPECT_EQ(decisionsInStore(), 2U);
  EXPECT_TRUE(model_.mayClose());
}

TEST_F(Window, LosesNoActionWhenItCannotBeSaved) {
  const auto change = [this](const char* sql) {
    Session(settings()).writableStore().write([sql](Connection& connection) { connection.execute(sql); });
  };
  change(R"sql(
CREATE TRIGGER refusal BEFORE INSERT ON relationship_attention_candidate
BEGIN
  SELECT RAISE(ABORT, 'refused');
END
)sql");
  model_.resolve();
  EXPECT_FALSE(model_.mayClose());
  EXPECT_TRUE(waitUntil([this] { return model_.notice() == WindowModel::CouldNotSave; }));
  EXPECT_EQ(model_.list()->count(), 3) << "what was not saved is not done";

  change("DROP TRIGGER refusal");
  model_.saveAgain();
  EXPECT_TRUE(waitUntil([this] { return decisionsInStore() == 1; }));
  EXPECT_TRUE(waitUntil([this] { return model_.notice() == WindowModel::NoNotice; }));
  EXPECT_EQ(model_.list()->count(), 2);
}

TEST_F(Window, HasAnOverviewThatFollowsTheStoreWhileItIsShown) {
  OverviewModel overview(loop_, store_, *clock_, std::nullopt);
  QObject::connect(&model_, &WindowModel::listRead, &overview, &OverviewModel::readAgain);
  overview.setIsShown(true);
  EXPECT_TRUE(waitUntil([&] { return overview.peopleCount() == 3 && overview.pictureCount() == 3; }));
  run({"hide", "bo@hill.example"});
  EXPECT_TRUE(waitUntil([&] { return overview.peopleCount() == 2; }));
}

TEST_F(Window, ShowsWhatAnotherProgramDecided) {
  run({"dismiss", "bo@hill.example"});
  EXPECT_TRUE(waitUntil([this] { return model_.list()->count() == 2; }));
}

class Corrections : public Window {
 protected:
  bool waitForRows(int count) {
    return waitUntil([&] { return model_.list()->count() == count; });
  }
  bool waitForName(const QString& name) {
    return waitUntil([&] { return model_.list()->rows().front().displayName == name; });
  }
  const CatchUpListRow& first() { return model_.list()->rows().front(); }

  CorrectionsModel corrections_{loop_, store_, model_};
};

TEST_F(Corrections, AreSavedAtOnceAndTakenBackByTheSameUndoAsDecisions) {
  model_.dismiss();
  const auto hidden = first();
  corrections_.hide(hidden.personKey, hidden.displayName);
  EXPECT_TRUE(waitForRows(1));
  EXPECT_EQ(decisionsInStore(), 1U) << "what was decided before is not undone any more";
  EXPECT_EQ(model_.noticeText(), "Hidden: " + hidden.displayName);
  EXPECT_NE(model_.chosen(), hidden.personKey);
  EXPECT_TRUE(Session(settings()).isHidden(hidden.personKey.toStdString()));

  model_.undo();
  EXPECT_TRUE(waitForRows(2));
  EXPECT_EQ(model_.chosen(), hidden.personKey);
  EXPECT_EQ(model_.notice(), WindowModel::NoNotice);

  corrections_.sayWrong(hidden.personKey, hidden.displayName, hidden.itemKey);
  EXPECT_TRUE(waitForRows(1));
  EXPECT_TRUE(model_.mayClose()) << "nothing is left to be saved";
}

TEST_F(Corrections, PutRightWhoIsWhoAndTellWhatKeepsThemFromIt) {
  const auto ada = first();
  const auto bo = model_.list()->rows()[1];
  corrections_.rename(ada.personKey, ada.displayName, " Aunt Ada ");
  EXPECT_TRUE(waitForName("Aunt Ada"));
  corrections_.rename(ada.personKey, "Aunt Ada", "");
  EXPECT_TRUE(waitForName(ada.displayName));

  corrections_.makeOne(ada.personKey, ada.displayName, bo.personKey, bo.displayName);
  EXPECT_TRUE(waitForRows(2));
  model_.undo();
  EXPECT_TRUE(waitForRows(3));

  corrections_.hide(bo.personKey, bo.displayName);
  EXPECT_TRUE(waitForRows(2));
  corrections_.makeOne(ada.personKey, ada.displayName, bo.personKey, bo.displayName);
  EXPECT_TRUE(waitUntil([this] { return model_.notice() == WindowModel::Told; })) << "one is hidden, the other is not";
}

} // namespace
} // namespace orvan
