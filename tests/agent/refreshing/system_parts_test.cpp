#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>

#include "application/agent/refreshing/background_runner.h"
#include "application/agent/refreshing/inotify_folder_watcher.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class BackgroundRunnerTest : public testing::Test {
 protected:
  void run(const std::string& script) {
    runner.emplace(loop.get_executor());
    runner->run({"/bin/sh", "-c", script}, [this](ProgramEnd told) { end = std::move(told); });
  }
  ProgramEnd wait() {
    loop.restart();
    loop.run_for(60s);
    return end.value();
  }

  boost::asio::io_context loop;
  std::optional<BackgroundRunner> runner;
  std::optional<ProgramEnd> end;
};

TEST_F(BackgroundRunnerTest, RunsAtTheLowestPriorityInAGroupOfItsOwnAndKeepsTheOutput) {
  // Policy 5 is SCHED_IDLE; the last fields of stat that are asked for are its group and how nice it is.
  run("cut -d' ' -f5,19,41 /proc/$$/stat; echo $$; cat; echo lost >&2; exit 3");
  const auto told = wait();
  EXPECT_EQ(told.kind, ProgramEnd::Kind::failed);
  const auto process = told.output.substr(told.output.find('\n') + 1);
  EXPECT_EQ(told.output, process.substr(0, process.size() - 1) + " 19 5\n" + process);
  run("exit 0");
  EXPECT_EQ(wait().kind, ProgramEnd::Kind::succeeded);
}

TEST_F(BackgroundRunnerTest, KillsTheWholeGroupAlsoWhenItGoes) {
  run("sleep 1000 & echo $!; wait");
  loop.run_one_for(60s);
  runner->kill();
  EXPECT_EQ(wait().kind, ProgramEnd::Kind::killed);
  EXPECT_NE(end->output, "");
  end.reset();
  run("sleep 1000");
  runner.reset();
  loop.restart();
  EXPECT_GT(loop.run_for(60s), 0U) << "it ends, and nobody is told";
  EXPECT_TRUE(loop.stopped());
  EXPECT_FALSE(end.has_value());
}

TEST(InotifyFolderWatcherTest, TellsOfWhatCountsAndSaysSoWhenItCannotWatchThatMuch) {
  auto folder = (fs::temp_directory_path() / "orvan-watched-XXXXXX").string();
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  const fs::path root = folder;
  fs::create_directories(root / "cur");
  boost::asio::io_context loop;
  InotifyFolderWatcher watcher(loop.get_executor(), 3);
  std::vector<FolderNews> news;
  const auto tell = [&](FolderNews what) { news.push_back(what); };
  const auto isToldAfter = [&](const auto& change) {
    change();
    loop.restart();
    loop.poll();
    return !std::exchange(news, {}).empty();
  };
  watcher.watch({{root, {{"Inbox"}}}, {root / "cur", std::nullopt}, {root / "gone", std::nullopt}}, tell);
  EXPECT_TRUE(isToldAfter([&] { std::ofstream(root / "Inbox") << "mail"; }));
  EXPECT_FALSE(isToldAfter([&] { std::ofstream(root / "Inbox.index") << "of it"; }));
  EXPECT_TRUE(isToldAfter([&] { fs::rename(root / "Inbox.index", root / "cur" / "1"); }));
  EXPECT_TRUE(isToldAfter([&] { fs::create_hard_link(root / "cur" / "1", root / "cur" / "2"); }));
  EXPECT_TRUE(isToldAfter([&] { fs::remove(root / "cur" / "1"); }));

  watcher.watch(std::vector<FolderToWatch>(4, {root, std::nullopt}), tell);
  loop.restart();
  loop.poll();
  EXPECT_EQ(news, std::vector{FolderNews::cannotWatch});
  EXPECT_FALSE(isToldAfter([&] { news.clear(), std::ofstream(root / "Inbox") << "more"; }));
  watcher.watch({}, {});
  fs::remove_all(root);
}

} // namespace
} // namespace orvan
