#include <gtest/gtest.h>

#include <iostream>

#include "application/cli/interruption.h"
#include "application/cli/progress_line.h"

namespace orvan {
namespace {

using std::chrono::seconds;

TEST(ProgressOfAnImport, SaysHowMuchIsReadAndAboutHowLongTheRestTakes) {
  constexpr std::uint64_t total = 1'000'000;
  EXPECT_EQ(progressText({1000, total / 100, total}, "messages", seconds{1}), "1000 messages, 1 %, 1000 a second");
  EXPECT_EQ(progressText({20000, total / 5, total}, "messages", seconds{10}),
            "20000 messages, 20 %, 2000 a second, about 40 s left");
  EXPECT_EQ(progressText({20000, total / 5, total}, "messages", seconds{25}),
            "20000 messages, 20 %, 800 a second, about 2 min left");
  EXPECT_EQ(progressText({20000, total / 5, total}, "messages", seconds{2000}),
            "20000 messages, 20 %, 10 a second, about 2 h left");
  EXPECT_EQ(progressText({7, 999, 1000}, "events", seconds{5}), "7 events, 99 %, 1 a second, a few seconds left");
  EXPECT_EQ(progressText({70, total + 1, total}, "messages", seconds{5}),
            "70 messages, 100 %, storing the last of them");
  EXPECT_EQ(progressText({70, 500, 0}, "messages", seconds{7}), "70 messages, 10 a second") << "from a pipe";
}

TEST(InterruptedImport, IsAskedToStopFirstAndEndsAtOnceTheSecondTime) {
  for (const int signal : {SIGINT, SIGTERM}) {
    EXPECT_EXIT(
        {
          ImportWatch watch;
          const Interruption interruption(watch);
          raise(signal);
          std::cerr << (watch.isStopRequested() && interruption.signal() == signal ? "asked" : "not asked");
          raise(signal);
        },
        testing::KilledBySignal(signal), "^asked");
  }
}

} // namespace
} // namespace orvan
