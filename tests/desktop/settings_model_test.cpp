#include "application/desktop/settings_model.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QCoreApplication>
#include <QDir>
#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/manual_clock.h"
#include "application/cli/command_line.h"
#include "application/desktop/written_path.h"
#include "application/sources/kept_fault.h"
#include "application/sources/source_fault.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

constexpr auto dayOfSettings = "2026-03-10T12:00:00Z";

/// The settings of a store that knows Ada, from a mail of hers to Robin.
class Settings : public testing::Test {
 protected:
  Settings() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
    std::ofstream(mbox()) << "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <1@hill.example>\n"
                             "From: Ada Marsh <ada@hill.example>\nTo: robin@orvan.example\n"
                             "Date: Mon, 09 Mar 2026 10:00:00 +0000\nSubject: The boat\n\nIt is ready.\n\n";
    run({"init"});
    run({"import", "--me", "robin@orvan.example", "--mbox", mbox().string()});
  }

  std::filesystem::path mbox() const { return folder_.path() / "mbox"; }
  SessionSettings settings() const { return {.store = folder_.path() / "store.db", .keyFile = folder_.path() / "key"}; }

  void run(std::vector<std::string> words) const {
    words.insert(words.begin(), {"orvan", "--as-of", dayOfSettings, "--store", settings().store.string(), "--key-file",
                                 settings().keyFile.string()});
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    testing::internal::CaptureStdout();
    EXPECT_EQ(runCommandLine(static_cast<int>(arguments.size()), arguments.data()), 0);
    testing::internal::GetCapturedStdout();
  }

  static bool waitUntil(const std::function<bool()>& holds) {
    const auto limit = std::chrono::steady_clock::now() + 20s;
    while (!holds() && std::chrono::steady_clock::now() < limit) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    return holds();
  }

  /// What the part answers to what it was just asked for.
  static QString answerOf(const SettingsPart& part) {
    EXPECT_TRUE(waitUntil([&part] { return !part.isBusy() && !part.answer().isEmpty(); }));
    return part.answer();
  }

  static QString valueIn(const QVariantList& rows, const char* name) {
    return rows.size() == 1 ? rows.front().toMap().value(name).toString() : QStringLiteral("not one row");
  }

  ScratchFolder folder_;
  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>(*parseInternetDateTime(dayOfSettings));
  QtLoop loop_;
  StoreThread store_{settings()};
  SettingsModel model_{loop_, store_, *clock_, std::nullopt};
};

TEST_F(Settings, RememberASourceOnceAndTellWhatIsWrongWithIt) {
  auto& sources = *model_.sources();
  const auto path = QString::fromStdString(mbox().string());
  sources.add(QStringLiteral(" '%1' ").arg(path));
  EXPECT_EQ(answerOf(sources), QStringLiteral("Added: Mail in %1.").arg(path));
  EXPECT_EQ(valueIn(sources.sources(), "state"), QStringLiteral("Not read yet"));
  sources.add(path);
  EXPECT_EQ(answerOf(sources), QStringLiteral("%1 is on the list already.").arg(path));
  sources.add(QString::fromStdString(folder_.path().string()));
  EXPECT_TRUE(answerOf(sources).endsWith(QStringLiteral("Remove that first.")));
  EXPECT_TRUE(sources.isRefusal());
  sources.add(path + u'x');
  EXPECT_EQ(answerOf(sources), QStringLiteral("There is no such file or folder; check the path."));

  std::filesystem::remove(mbox());
  const auto number = sources.sources().front().toMap().value(QStringLiteral("number")).toInt();
  Session(settings()).writableStore().write([&](Connection& connection) {
    recordReadingFailed(rememberedSources(connection).front(),
                        keptFaultText({{"A/In: out", make_error_code(SourceFault::gone).message()}, {"B", ""}}),
                        clock_->now(), connection);
  });
  sources.look();
  EXPECT_TRUE(waitUntil([&] { return sources.isInTrouble(); }));
  EXPECT_EQ(sources.glance(), QStringLiteral("1 of 1 sources cannot be read"));
  const auto trouble = valueIn(sources.sources(), "trouble");
  EXPECT_TRUE(trouble.startsWith(QStringLiteral("A/In: out: It is not there")));
  EXPECT_TRUE(trouble.endsWith(QStringLiteral("or remove it here. And 1 more.")));
  sources.remove(number);
  EXPECT_TRUE(answerOf(sources).endsWith(QStringLiteral("what was read from it stays.")));
  EXPECT_TRUE(sources.sources().isEmpty());
}

TEST_F(Settings, KeepOneOwnAddressAndTellWhomAnotherOneWasTakenFor) {
  auto& addresses = *model_.addresses();
  bool isListOutdated = false;
  QObject::connect(&model_, &SettingsModel::storeChanged, [&] { isListOutdated = true; });
  addresses.add(QStringLiteral("nobody"));
  EXPECT_TRUE(addresses.isRefusal());
  addresses.add(QStringLiteral("Ada@Hill.example"));
  EXPECT_TRUE(answerOf(addresses).contains(QStringLiteral("It was taken for Ada Marsh, who is nobody else any more.")));
  EXPECT_EQ(addresses.addresses().size(), 2);
  EXPECT_TRUE(isListOutdated);
  addresses.remove(QStringLiteral("ada@hill.example"));
  EXPECT_TRUE(answerOf(addresses).contains(QStringLiteral("It is Ada Marsh's again.")));
  addresses.remove(QStringLiteral("robin@orvan.example"));
  EXPECT_TRUE(answerOf(addresses).startsWith(QStringLiteral("That is the only address known as yours")));
  EXPECT_EQ(valueIn(addresses.addresses(), "address"), QStringLiteral("robin@orvan.example"));
}

TEST_F(Settings, ShowAgainWhoWasHidden) {
  run({"hide", "ada@hill.example"});
  auto& hidden = *model_.hidden();
  hidden.look();
  EXPECT_TRUE(waitUntil([&] { return valueIn(hidden.things(), "name") == QStringLiteral("Ada Marsh"); }));
  hidden.showAgain(valueIn(hidden.things(), "key"));
  EXPECT_EQ(answerOf(hidden), QStringLiteral("Shown again: Ada Marsh"));
  EXPECT_TRUE(hidden.things().isEmpty());
}

TEST_F(Settings, ChangeTheKeyOfTheStoreThatTheWindowItselfHasOpenAndOfNoOther) {
  auto& safety = *model_.safety();
  safety.look();
  EXPECT_TRUE(waitUntil([&] { return safety.isKeyKnown(); }));
  {
    Session other(settings());
    other.openForReading();
    safety.changeKey({});
    EXPECT_TRUE(answerOf(safety).endsWith(QStringLiteral("nothing was changed.")));
    EXPECT_TRUE(safety.isRefusal());
  }
  const auto former = folder_.path() / "former-key";
  safety.changeKey(QString::fromStdString(former.string()));
  EXPECT_TRUE(answerOf(safety).startsWith(QStringLiteral("The store has a new key."))) << safety.answer().toStdString();
  EXPECT_EQ(std::filesystem::file_size(former), 32U);
  model_.hidden()->look();
  EXPECT_TRUE(waitUntil([&] { return !model_.hidden()->glance().isEmpty(); })) << "the window opens it anew";

  model_.backup()->make(QString::fromStdString((folder_.path() / "copy").string()), {});
  EXPECT_TRUE(answerOf(*model_.backup()).startsWith(QStringLiteral("The backup is whole:")));
  EXPECT_TRUE(model_.backup()->glance().startsWith(QStringLiteral("Last one on")));
}

TEST(WrittenPath, MeansTheFileThatWasWrittenDraggedOrQuoted) {
  EXPECT_EQ(writtenPath(QStringLiteral("  ")), std::filesystem::path{});
  EXPECT_EQ(writtenPath(QStringLiteral("~/Mail/ ")), std::filesystem::path(QDir::homePath().toStdString()) / "Mail");
  EXPECT_EQ(writtenPath(QStringLiteral("file:///tmp/a%20b")), "/tmp/a b");
  EXPECT_EQ(writtenPath(QStringLiteral("\"/tmp/a b\"")), "/tmp/a b");
}

} // namespace
} // namespace orvan
