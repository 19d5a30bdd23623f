#include "application/agent/reminders/system_wall_clock_alarm.h"

#include <gmock/gmock.h>

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <filesystem>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

TEST(SystemWallClockAlarm, WakesAtItsInstantAndWhenTheZoneChanges) {
  const ScratchFolder folder;
  boost::asio::io_context loop;
  SystemWallClockAlarm alarm(loop.get_executor(), folder.path() / "localtime");
  std::vector<WakeReason> reasons;
  alarm.setWake([&](WakeReason reason) { reasons.push_back(reason); });
  const auto wait = [&] {
    const auto before = reasons.size();
    while (reasons.size() == before && loop.run_one_for(std::chrono::seconds{20}) > 0) {
    }
  };
  const SystemClock clock;

  alarm.setFor(clock.now() + std::chrono::hours{1});
  const auto due = clock.now() + std::chrono::milliseconds{20};
  alarm.setFor(due);
  wait();
  EXPECT_GE(clock.now(), due);
  alarm.setFor(clock.now() - std::chrono::hours{1});
  wait();

  alarm.setFor(std::nullopt);
  std::filesystem::create_symlink("/elsewhere", folder.path() / "new");
  std::filesystem::rename(folder.path() / "new", folder.path() / "localtime");
  wait();
  EXPECT_THAT(reasons,
              testing::ElementsAre(WakeReason::instantCame, WakeReason::instantCame, WakeReason::clockChanged));
}

} // namespace
} // namespace orvan
