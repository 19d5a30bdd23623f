#include <gtest/gtest.h>

#include <iostream>

#include "application/cli/interruption.h"
#include "application/cli/progress_line.h"

namespace orvan {
namespace {

using std::chrono::seconds;

std::string told(const ImportProgress& progress, seconds now, seconds latestBatch = seconds{0}) {
  return progressText(progress, "messages", {now, latestBatch});
}

TEST(ProgressOfAnImport, SaysHowMuchIsReadAndAboutHowLongTheRestTakes) {
  constexpr SourceAmount fifth{.read = 200, .total = 1000};
  EXPECT_EQ(told({20000, 0, fifth}, seconds{1}), "20000 messages, 20 %, 20000 a second");
  EXPECT_EQ(told({20000, 10000, fifth}, seconds{10}, seconds{5}),
            "20000 messages, 20 %, 2000 a second, about 40 s left");
  EXPECT_EQ(told({20000, 10000, fifth}, seconds{16}, seconds{10}),
            "20000 messages, 20 %, 1000 a second, about 1 min left");
  EXPECT_EQ(told({20000, 10000, fifth}, seconds{700}, seconds{700}),
            "20000 messages, 20 %, 14 a second, about 2 h left");
  EXPECT_EQ(told({20000, 15000, {.read = 999, .total = 998}}, seconds{18}, seconds{15}),
            "20000 messages read, storing the last of them, a few seconds left");
  EXPECT_EQ(told({70, 0, {.read = 500, .total = 0}}, seconds{7}), "70 messages, 10 a second") << "from a pipe";
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
