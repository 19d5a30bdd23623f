#include "application/agent/refreshing/source_refreshing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/capturing_log.h"
#include "OrvanTestSupport/manual_clock.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
using Kind = ProgramEnd::Kind;

constexpr auto twoSources = R"({"remembered": 2, "folders": [{"path": "/mail", "names": ["Inbox"]}]})";
constexpr auto nothingNew =
    R"({"sources": [{"mail": null, "meetings": {"read": 3, "new": 0}}, {"cards": {"new": 0}}]})";
constexpr auto someNew = R"({"sources": [{"mail": {"read": 3, "new": 1}}, {"meetings": null}]})";

/// Notes what is run. A test says how it ends.
struct FakeRunner final : ProgramRunner {
  explicit FakeRunner(std::vector<std::string>& started) : started(started) {}

  void run(std::vector<std::string> words, Ended whenEnded) override {
    EXPECT_EQ(ended, nullptr) << "two at once";
    EXPECT_THAT(words, testing::Contains("/home/store.db"));
    started.push_back(words.back());
    ended = std::move(whenEnded);
  }
  void kill() override {
    if (ended != nullptr) {
      boost::asio::post(executor, [this] { end(Kind::killed); });
    }
  }
  void end(Kind kind, std::string output = "") { std::exchange(ended, nullptr)({kind, std::move(output)}); }

  std::vector<std::string>& started;
  Executor executor;
  Ended ended;
};

struct FakeWatcher final : FolderWatcher {
  void watch(std::vector<FolderToWatch> toWatch, Tell toTell) override {
    folders = std::move(toWatch);
    tell = std::move(toTell);
  }

  std::vector<FolderToWatch> folders;
  Tell tell;
};

class SourceRefreshingTest : public testing::Test {
 protected:
  SourceRefreshingTest() {
    auto ownRunner = std::make_unique<FakeRunner>(started);
    auto ownWatcher = std::make_unique<FakeWatcher>();
    runner = ownRunner.get();
    runner->executor = loop.get_executor();
    watcher = ownWatcher.get();
    refreshing.emplace(loop.get_executor(), RefreshingSettings{"/home/store.db", "/home/key", "/bin/orvan", supplies},
                       RefreshingParts{clock, log, std::move(ownRunner), std::move(ownWatcher)});
    refreshing->onBrought([this] { ++brought; });
  }
  ~SourceRefreshingTest() override {
    refreshing.reset();
    clock->dropTimers();
    fs::remove_all(supplies);
  }

  void settle() {
    loop.restart();
    loop.poll();
  }
  void advance(std::chrono::nanoseconds time) {
    clock->advance(time);
    settle();
  }
  void end(Kind kind, std::string output = "") {
    runner->end(kind, std::move(output));
    settle();
  }
  /// Through the first round.
  void startWithSources() {
    refreshing->start();
    settle();
    end(Kind::succeeded, twoSources);
    end(Kind::succeeded, nothingNew);
    ASSERT_THAT(std::exchange(started, {}), ElementsAre("folders", "refresh"));
  }
  void setBattery(const std::string& percent, const std::string& status) const {
    fs::create_directories(supplies / "BAT0");
    std::ofstream(supplies / "BAT0" / "type") << "Battery\n";
    std::ofstream(supplies / "BAT0" / "status") << status << "\n";
    std::ofstream(supplies / "BAT0" / "capacity") << percent << "\n";
  }

  /// Tests of one machine run at the same time.
  fs::path supplies = fs::path{testing::TempDir()} / ("orvan-power-supply-" + std::to_string(getpid()));
  boost::asio::io_context loop;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(*parseInternetDateTime("2026-03-04T09:15:00Z"));
  std::shared_ptr<CapturingLog> log = std::make_shared<CapturingLog>();
  std::vector<std::string> started;
  FakeRunner* runner = nullptr;
  FakeWatcher* watcher = nullptr;
  std::optional<SourceRefreshing> refreshing;
  int brought = 0;
};

TEST_F(SourceRefreshingTest, ReadsEveryFifteenMinutesAndTellsOnlyOfWhatIsNew) {
  startWithSources();
  EXPECT_THAT(watcher->folders, ElementsAre(FolderToWatch{"/mail", {{"Inbox"}}}));
  EXPECT_EQ(refreshing->lastRefresh(), clock->now());
  EXPECT_EQ(clock->timerCount(), 1U);
  advance(15min - 1ns);
  EXPECT_TRUE(started.empty());
  advance(1ns);
  end(Kind::succeeded, twoSources);
  EXPECT_EQ(brought, 0);
  // Another source could not be read: what this one brought counts all the same.
  end(Kind::failed, someNew);
  EXPECT_EQ(brought, 1);
  EXPECT_EQ(refreshing->lastRefresh(), clock->now());

  advance(15min);
  end(Kind::succeeded, R"({"remembered": 0, "folders": []})");
  EXPECT_THAT(started, ElementsAre("folders", "refresh", "folders")) << "nothing to read, nothing is run";
}

TEST_F(SourceRefreshingTest, ReadsAChangeOnceItHasComeToRestAndOneDuringAReadingAfterIt) {
  startWithSources();
  for (int second = 0; second < 60; ++second) {
    watcher->tell(FolderNews::changed);
    EXPECT_LE(clock->timerCount(), 2U);
    advance(1s);
  }
  EXPECT_TRUE(started.empty());
  advance(9s);
  EXPECT_THAT(started, ElementsAre("refresh"));
  watcher->tell(FolderNews::changed);
  advance(1min);
  end(Kind::succeeded, someNew);
  EXPECT_THAT(started, ElementsAre("refresh", "refresh"));
  watcher->tell(FolderNews::cannotWatch);
  watcher->tell(FolderNews::cannotWatch);
  EXPECT_EQ(log->messages().size(), 1U);
}

TEST_F(SourceRefreshingTest, LeavesALowBatteryAlone) {
  setBattery("19", "Discharging");
  refreshing->start();
  settle();
  advance(15min);
  EXPECT_TRUE(started.empty());
  setBattery("19", "Charging");
  advance(15min);
  EXPECT_THAT(started, ElementsAre("folders"));
  setBattery("20", "Discharging");
  EXPECT_FALSE(isBatteryLow(supplies));
}

TEST_F(SourceRefreshingTest, SwitchedOffRunsNothingAndEndsWhatRuns) {
  startWithSources();
  watcher->tell(FolderNews::changed);
  advance(10s);
  EXPECT_THAT(std::exchange(started, {}), ElementsAre("refresh"));
  refreshing->setEnabled(false);
  settle();
  EXPECT_EQ(runner->ended, nullptr);
  EXPECT_EQ(brought, 1) << "it may have brought something before";
  EXPECT_TRUE(watcher->folders.empty());
  EXPECT_EQ(clock->timerCount(), 0U);
  advance(24h);
  EXPECT_TRUE(started.empty());
  refreshing->setEnabled(true);
  settle();
  EXPECT_THAT(started, ElementsAre("folders"));
  end(Kind::succeeded, twoSources);
  end(Kind::succeeded, nothingNew);
  refreshing->setEnabled(false);
  EXPECT_EQ(clock->timerCount(), 0U);
}

TEST_F(SourceRefreshingTest, WhatFailsIsTriedAtTheNextIntervalAndWhatHangsIsKilled) {
  startWithSources();
  const auto last = refreshing->lastRefresh();
  advance(15min);
  end(Kind::failed);
  advance(15min - 1s);
  EXPECT_THAT(std::exchange(started, {}), ElementsAre("folders"));
  EXPECT_TRUE(log->messages().empty());
  advance(1s);
  end(Kind::succeeded, twoSources);
  advance(2h - 1ns);
  EXPECT_NE(runner->ended, nullptr);
  advance(1ns);
  EXPECT_EQ(runner->ended, nullptr);
  EXPECT_EQ(refreshing->lastRefresh(), last);
  EXPECT_EQ(log->messages().size(), 1U);
  advance(10s);
  EXPECT_THAT(started, ElementsAre("folders", "refresh", "folders"));
}

} // namespace
} // namespace orvan
