#include "application/session/snooze_end.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

/// Read on Saturday, 28 March 2026, at 10:30 in Lisbon; the clocks go forward in the night that follows.
std::string end(std::string_view text) {
  setenv("TZ", "Europe/Lisbon", 1);
  const auto instant = parseSnoozeEnd(text, *parseInternetDateTime("2026-03-28T10:30:00Z"));
  return instant ? formatInternetDateTime(*instant) : "none";
}

TEST(SnoozeEnd, IsReadAsPeopleSayItInTheirZone) {
  EXPECT_EQ(end("2026-05-01T08:00:00+02:00"), "2026-05-01T06:00:00Z");
  EXPECT_EQ(end("2026-05-01"), "2026-04-30T23:00:00Z");
  EXPECT_EQ(end("3d"), "2026-03-31T09:30:00Z") << "the same time of day, an hour earlier in UTC";
  EXPECT_EQ(end("2w"), "2026-04-11T09:30:00Z");
  EXPECT_EQ(end("tomorrow"), "2026-03-29T00:00:00Z");
  EXPECT_EQ(end("Monday"), "2026-03-29T23:00:00Z");
  EXPECT_EQ(end("saturday"), "2026-04-03T23:00:00Z") << "never today";
  for (const char* text : {"", "3", "d", "-3d", "3x", "3dd", "99999999999d", "2026-02-30", "yesterday", "mon"}) {
    EXPECT_EQ(end(text), "none") << text;
  }
}

} // namespace
} // namespace orvan
