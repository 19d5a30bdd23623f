#include "application/session/snooze_end.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "OrvanPlatform/internet_date_time.h"
#include "application/session/said_moment.h"

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
  EXPECT_EQ(end("tomorrow at 9:30"), "2026-03-29T08:30:00Z");
  for (const char* text : {"", "3", "d", "-3d", "3x", "3dd", "99999999999d", "2026-02-30", "yesterday", "mon"}) {
    EXPECT_EQ(end(text), "none") << text;
  }
}

TEST(AMomentToFollowUp, IsInTheMorningUnlessSomebodySaysATime) {
  const auto moment = [](std::string_view text) {
    const auto instant = parseSaidMoment(text, *parseInternetDateTime("2026-03-28T10:30:00Z"), UnsaidTime::morning);
    return instant ? formatInternetDateTime(*instant) : "none";
  };
  setenv("TZ", "Europe/Lisbon", 1);
  EXPECT_EQ(moment("2026-05-01"), "2026-05-01T08:00:00Z");
  EXPECT_EQ(moment("3 days"), "2026-03-31T08:00:00Z");
  EXPECT_EQ(moment("in 3d at 18:00"), "2026-03-31T17:00:00Z");
  EXPECT_EQ(moment("on Friday 8am"), "2026-04-03T07:00:00Z");
  EXPECT_EQ(moment("today 12:15 AM"), "2026-03-28T00:15:00Z") << "which has passed";
  EXPECT_EQ(moment("11:00"), "2026-03-28T11:00:00Z");
  EXPECT_EQ(moment("10:30"), "2026-03-29T09:30:00Z") << "the next one";
  EXPECT_EQ(moment("in 2 hours"), "2026-03-28T12:30:00Z");
  EXPECT_EQ(moment("90m"), "2026-03-28T12:00:00Z");
  for (const char* text : {"at", "25:00", "9:3", "13pm", "0am", "friday friday", "8:00 friday", "3d 4d 9:00", "1:99"}) {
    EXPECT_EQ(moment(text), "none") << text;
  }
}

} // namespace
} // namespace orvan
