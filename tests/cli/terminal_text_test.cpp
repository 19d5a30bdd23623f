#include "application/cli/terminal_text.h"

#include <gtest/gtest.h>

#include "application/cli/sparkline.h"

namespace orvan {
namespace {

TEST(TerminalText, IsCutBetweenCharactersByTheColumnsTheyTake) {
  EXPECT_EQ(cutToColumns("The boat", 8), "The boat");
  EXPECT_EQ(cutToColumns("The boat", 7), "The ...");
  EXPECT_EQ(cutToColumns("山田さくら", 10), "山田さくら");
  EXPECT_EQ(cutToColumns("山田さくら", 8), "山田...") << "half a character does not fit";
  EXPECT_EQ(cutToColumns("Cafe\u0301 Sol", 7), "Cafe\u0301...");
  EXPECT_EQ(cutToColumns("\U0001F469\u200D\U0001F52C at tea", 6), "\U0001F469\u200D\U0001F52C ...");
  EXPECT_EQ(cutToColumns("Tea", 2), "...") << "no terminal is that narrow";
}

TEST(Sparkline, ShowsWhatIsMuchAndWhatIsSome) {
  EXPECT_EQ(summedUp(std::vector<std::int64_t>{1, 2, 0, 3, 4}, 2), (std::vector<std::int64_t>{1, 2, 7}));
  const std::vector<std::int64_t> counts{0, 1, 40, 80, 81};
  EXPECT_EQ(sparkline(counts, 80, SparklineStyle::blocks), "·▁▄██");
  EXPECT_EQ(sparkline(counts, 80, SparklineStyle::digits), ".1999");
}

} // namespace
} // namespace orvan
