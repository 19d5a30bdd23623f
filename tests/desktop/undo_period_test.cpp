#include "application/desktop/undo_period.h"

#include <gtest/gtest.h>

#include <string>

namespace orvan {
namespace {

using namespace std::chrono_literals;

constexpr MonotonicInstant start{1h};

TEST(UndoPeriod, GivesADecisionAwayOnceItsTenSecondsAreOver) {
  UndoPeriod<std::string> period;
  EXPECT_FALSE(period.begin("dismiss Ada", start));
  EXPECT_EQ(period.left(start + 3500ms), 7s);
  EXPECT_FALSE(period.takeDue(start + 9999ms));
  EXPECT_EQ(period.takeDue(start + 10s), "dismiss Ada");
  EXPECT_FALSE(period.takeDue(start + 20s));
  EXPECT_EQ(period.left(start + 20s), 0s);
}

TEST(UndoPeriod, GivesADecisionAwayAtOnceWhenAnotherComesOrNoMoreTimeIsGiven) {
  UndoPeriod<std::string> period;
  period.begin("dismiss Ada", start);
  EXPECT_EQ(period.begin("resolve Bo", start + 4s), "dismiss Ada");
  EXPECT_FALSE(period.takeDue(start + 11s)) << "the second one has ten seconds of its own";
  EXPECT_EQ(period.take(), "resolve Bo");
  EXPECT_FALSE(period.takeDue(start + 15s)) << "what was undone must not be saved afterwards";
}

} // namespace
} // namespace orvan
