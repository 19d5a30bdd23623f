#pragma once

#include <optional>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// A date and time of day as the user's calendar and time zone name it. Months and days count from 1.
class CalendarComponents {
 public:
  CalendarComponents(int year, int month, int day, int hour, int minute, int second)
      : year_(year), month_(month), day_(day), hour_(hour), minute_(minute), second_(second) {}

  int year() const noexcept { return year_; }
  int month() const noexcept { return month_; }
  int day() const noexcept { return day_; }
  int hour() const noexcept { return hour_; }
  int minute() const noexcept { return minute_; }
  int second() const noexcept { return second_; }

  bool operator==(const CalendarComponents&) const = default;

 private:
  int year_;
  int month_;
  int day_;
  int hour_;
  int minute_;
  int second_;
};

/// `instant` in the user's calendar and time zone of this moment (LC_ALL, LC_TIME, LANG; TZ and the system's setting).
/// What lies below the second is dropped. May be called from any thread.
CalendarComponents userCalendarComponents(Instant instant);

/// The instant that `components` name in the user's calendar and time zone of this moment. A time that a change of the
/// clocks skips is read with the offset from before the change, one that it repeats as the later one. Absent when the
/// calendar has no such date. May be called from any thread.
std::optional<Instant> userCalendarInstant(const CalendarComponents& components);

} // namespace orvan
