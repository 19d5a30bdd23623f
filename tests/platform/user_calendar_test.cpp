#include "OrvanPlatform/user_calendar.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

class UserCalendar : public testing::Test {
 protected:
  static void useSettings(const char* locale, const char* zone) {
    setenv("LC_ALL", locale, 1);
    setenv("TZ", zone, 1);
  }

  static Instant instantOf(const char* timestamp) { return *parseInternetDateTime(timestamp); }
};

TEST_F(UserCalendar, NamesAnInstantInTheUsersZoneAndCalendarWithoutItsFraction) {
  using namespace std::chrono_literals;
  useSettings("en_US.UTF-8", "Asia/Tokyo");
  EXPECT_EQ(userCalendarComponents(instantOf("2026-12-31T16:41:59Z") + 900ms),
            (CalendarComponents{2027, 1, 1, 1, 41, 59}));
  useSettings("th_TH.UTF-8", "UTC");
  EXPECT_EQ(userCalendarComponents(instantOf("2026-03-04T09:15:00Z")), (CalendarComponents{2569, 3, 4, 9, 15, 0}));
}

TEST_F(UserCalendar, ReadsBackWhatItNamed) {
  for (const char* zone : {"UTC", "America/New_York", "Asia/Kathmandu"}) {
    for (const char* locale : {"en_US.UTF-8", "th_TH.UTF-8", "ja_JP.UTF-8", "fa_IR.UTF-8"}) {
      useSettings(locale, zone);
      const Instant instant = instantOf("2028-02-29T23:59:58Z");
      EXPECT_EQ(userCalendarInstant(userCalendarComponents(instant)), instant) << zone << " " << locale;
    }
  }
}

TEST_F(UserCalendar, ReadsTimesThatAChangeOfTheClocksSkipsOrRepeats) {
  useSettings("en_US.UTF-8", "America/New_York");
  EXPECT_EQ(userCalendarInstant({2026, 3, 8, 2, 30, 0}), instantOf("2026-03-08T07:30:00Z"));
  EXPECT_EQ(userCalendarInstant({2026, 11, 1, 1, 30, 0}), instantOf("2026-11-01T06:30:00Z"));
  EXPECT_FALSE(userCalendarInstant({2026, 2, 30, 9, 0, 0}).has_value());
}

} // namespace
} // namespace orvan
