#include "OrvanPlatform/internet_date_time.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvan {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;
using std::chrono::year;

TEST(InternetDateTime, ReadsZuluAndNumericOffsets) {
  const Instant nineFifteen = sys_days{year{2026} / 3 / 4} + 9h + 15min;
  for (const auto& [text, instant] : {std::pair{"2026-03-04T09:15:00Z", nineFifteen},
                                      {"2026-03-04T10:15:00+01:00", nineFifteen},
                                      {"2026-03-03T23:45:00-09:30", nineFifteen},
                                      {"2024-02-29T00:00:00Z", sys_days{year{2024} / 2 / 29}},
                                      {"0001-01-01T00:00:00Z", earliestInstant},
                                      {"9999-12-31T23:59:59Z", sys_days{year{10000} / 1 / 1} - 1s}}) {
    EXPECT_EQ(parseInternetDateTime(text), instant) << text;
  }
}

TEST(InternetDateTime, RefusesEveryOtherForm) {
  for (const char* text :
       {" 2026-03-04T09:15:00Z",     "2026-03-04T09:15:00Z ",  "2026-03-04T09:15:00.250Z",  "2026-03-04T09:15:00",
        "2026-03-04T09:15Z",         "2026-03-04t09:15:00Z",   "2026-03-04T09:15:00z",      "2026-03-04 09:15:00Z",
        "2026-03-04T09:15:00+0100",  "2026-03-04T09:15:00+01", "2026-03-04T09:15:00+24:00", "2026-03-04T09:15:00+01:60",
        "2026-03-04T24:00:00Z",      "2026-03-04T09:60:00Z",   "2026-03-04T09:15:60Z",      "2026-02-29T09:15:00Z",
        "2026-04-31T09:15:00Z",      "2026-00-04T09:15:00Z",   "2026-13-04T09:15:00Z",      "2026-03-00T09:15:00Z",
        "0000-03-04T09:15:00Z",      "2O26-03-04T09:15:00Z",   "+026-03-04T09:15:00Z",      "2026-03-04T09:15:-1Z",
        "\xff\xfe:6-03-04T09:15:00Z"}) {
    EXPECT_FALSE(parseInternetDateTime(text)) << text;
  }
  EXPECT_FALSE(parseInternetDateTime(""));
  EXPECT_FALSE(parseInternetDateTime("2026-03-04"));
}

TEST(InternetDateTime, WritesWholeSecondsThatSortAsTheInstantsDo) {
  const Instant moment = sys_days{year{2026} / 3 / 5} + 14h + 7min + 9s;
  EXPECT_EQ(formatInternetDateTime(moment), "2026-03-05T14:07:09Z");
  EXPECT_EQ(formatInternetDateTime(moment + 999ms), "2026-03-05T14:07:09Z");
  EXPECT_EQ(formatInternetDateTime(sys_days{year{1970} / 1 / 1} - 100ms), "1969-12-31T23:59:59Z");
  EXPECT_EQ(formatInternetDateTime(earliestInstant - 1s), "0001-01-01T00:00:00Z");
  EXPECT_EQ(formatInternetDateTime(latestInstant + 1s), "9999-12-31T23:59:59Z");
}

TEST(Instants, MovingByDaysStopsAtTheEndsOfTheCalendar) {
  const Instant moment = sys_days{year{2026} / 3 / 5} + 14h;
  using Days = std::numeric_limits<std::int64_t>;
  EXPECT_EQ(instantByAddingDays(moment, 14), moment + 14 * 86400s);
  EXPECT_EQ(instantByAddingDays(moment, -30), moment - 30 * 86400s);
  EXPECT_EQ(instantByAddingDays(moment, Days::max()), latestInstant);
  EXPECT_EQ(instantByAddingDays(moment, Days::min()), earliestInstant);
  EXPECT_EQ(instantBySubtractingDays(moment, 30), moment - 30 * 86400s);
  EXPECT_EQ(instantBySubtractingDays(moment, Days::min()), latestInstant);
}

} // namespace
} // namespace orvan
