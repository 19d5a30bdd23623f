#include "OrvanPlatform/user_calendar.h"

#include <unicode/calendar.h>

#include <memory>

#include "OrvanPlatform/internal/user_locale.h"
#include "OrvanPlatform/local_time.h"

namespace orvan {
namespace {

/// Reckons in local time: the change to and from UTC is made outside.
std::unique_ptr<icu::Calendar> userCalendar(UErrorCode& error) {
  return std::unique_ptr<icu::Calendar>{
      icu::Calendar::createInstance(*icu::TimeZone::getGMT(), internal::userLocale(internal::userLocaleName()), error)};
}

} // namespace

CalendarComponents userCalendarComponents(Instant instant) {
  UErrorCode error = U_ZERO_ERROR;
  const auto calendar = userCalendar(error);
  const auto local = std::chrono::milliseconds{localTimeOf(instant).time_since_epoch()};
  calendar->setTime(static_cast<UDate>(local.count()), error);
  const auto field = [&](UCalendarDateFields name) { return calendar->get(name, error); };
  return CalendarComponents{field(UCAL_YEAR),        field(UCAL_MONTH) + 1, field(UCAL_DAY_OF_MONTH),
                            field(UCAL_HOUR_OF_DAY), field(UCAL_MINUTE),    field(UCAL_SECOND)};
}

std::optional<Instant> userCalendarInstant(const CalendarComponents& components) {
  UErrorCode error = U_ZERO_ERROR;
  const auto calendar = userCalendar(error);
  calendar->clear();
  calendar->set(UCAL_YEAR, components.year());
  calendar->set(UCAL_MONTH, components.month() - 1);
  calendar->set(UCAL_DAY_OF_MONTH, components.day());
  calendar->set(UCAL_HOUR_OF_DAY, components.hour());
  calendar->set(UCAL_MINUTE, components.minute());
  calendar->set(UCAL_SECOND, components.second());
  const UDate milliseconds = calendar->getTime(error);
  // Day 31 of a month with 30 days reads as the first of the next.
  if (U_FAILURE(error) != 0 || calendar->get(UCAL_DAY_OF_MONTH, error) != components.day()) {
    return std::nullopt;
  }
  const std::chrono::milliseconds local{static_cast<std::int64_t>(milliseconds)};
  return instantOfLocalTime(std::chrono::local_seconds{std::chrono::duration_cast<std::chrono::seconds>(local)},
                            RepeatedTime::later);
}

} // namespace orvan
