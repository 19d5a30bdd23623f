#include "OrvanPlatform/local_time.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/user_calendar.h"

namespace orvan {
namespace {

void useSettings(const char* locale, const char* zone) {
  setenv("LC_ALL", locale, 1);
  setenv("TZ", zone, 1);
}

Instant instantOf(const char* timestamp) {
  return *parseInternetDateTime(timestamp);
}

TEST(HumanDate, FollowsTheSettingsOfTheMomentItIsAsked) {
  const Instant instant = instantOf("2026-03-04T23:30:00Z");
  for (const auto& [locale, zone, date, time] : {std::tuple{"en_US.UTF-8", "UTC", "Mar 4, 2026", ", 11:30 PM"},
                                                 {"en_US.UTF-8", "Asia/Tokyo", "Mar 5, 2026", ", 8:30 AM"},
                                                 {"de_DE.UTF-8", "Asia/Tokyo", "05.03.2026", ", 08:30"},
                                                 {"sr_RS.UTF-8@latin", "Asia/Tokyo", "5. 3. 2026.", " 08:30"},
                                                 {"C", "America/New_York", "Mar 4, 2026", ", 6:30 PM"},
                                                 {"C", ":/usr/share/zoneinfo/Asia/Tokyo", "Mar 5, 2026", ", 8:30 AM"},
                                                 {"C", "CET-1CEST,M3.5.0,M10.5.0/3", "Mar 5, 2026", ", 12:30 AM"},
                                                 {"C", "<+03>-3", "Mar 5, 2026", ", 2:30 AM"},
                                                 {"C", "Etc/GMT-3", "Mar 5, 2026", ", 2:30 AM"},
                                                 {"C", "", "Mar 4, 2026", ", 11:30 PM"}}) {
    useSettings(locale, zone);
    EXPECT_EQ(humanDateText(instant), date) << locale << ' ' << zone;
    EXPECT_EQ(humanMomentText(instant), std::string{date} + time) << locale << ' ' << zone;
  }
}

TEST(UserCalendar, NamesAnInstantInTheUsersZoneAndCalendarWithoutItsFraction) {
  using namespace std::chrono_literals;
  useSettings("en_US.UTF-8", "Asia/Tokyo");
  EXPECT_EQ(userCalendarComponents(instantOf("2026-12-31T16:41:59Z") + 900ms),
            (CalendarComponents{2027, 1, 1, 1, 41, 59}));
  useSettings("th_TH.UTF-8", "UTC");
  EXPECT_EQ(userCalendarComponents(instantOf("2026-03-04T09:15:00Z")), (CalendarComponents{2569, 3, 4, 9, 15, 0}));
}

TEST(UserCalendar, ReadsBackWhatItNamed) {
  const Instant instant = instantOf("2028-02-29T23:59:58Z");
  for (const char* zone :
       {"UTC", "America/New_York", "Asia/Kathmandu", "<-12>12", "LHST-10:30LHDT-11,M10.1.0,M4.1.0"}) {
    for (const char* locale : {"en_US.UTF-8", "th_TH.UTF-8", "ja_JP.UTF-8", "fa_IR.UTF-8"}) {
      useSettings(locale, zone);
      EXPECT_EQ(userCalendarInstant(userCalendarComponents(instant)), instant) << zone << " " << locale;
    }
  }
}

TEST(UserCalendar, ReadsTimesThatAChangeOfTheClocksSkipsOrRepeats) {
  for (const char* zone : {"America/New_York", "EST5EDT,M3.2.0,M11.1.0"}) {
    useSettings("en_US.UTF-8", zone);
    EXPECT_EQ(userCalendarInstant({2026, 3, 8, 2, 30, 0}), instantOf("2026-03-08T07:30:00Z")) << zone;
    EXPECT_EQ(userCalendarInstant({2026, 11, 1, 1, 30, 0}), instantOf("2026-11-01T06:30:00Z")) << zone;
    for (const char* instant : {"2026-03-08T16:00:00Z", "2026-11-01T05:30:00Z", "2026-11-01T16:00:00Z"}) {
      EXPECT_EQ(instantOfLocalTime(localTimeOf(instantOf(instant))), instantOf(instant)) << zone << " " << instant;
    }
    EXPECT_FALSE(userCalendarInstant({2026, 2, 30, 9, 0, 0}).has_value());
  }
}

} // namespace
} // namespace orvan
