#include "application/import/calendar/calendar_event.h"

#include <string_view>
#include <utility>

#include "application/import/calendar/attendee_list.h"
#include "application/import/calendar/calendar_component.h"

namespace orvan {
namespace {

/// The zone's identifier is taken from the property and not from the parser's own look-up, which knows zones only under
/// a prefix of its own.
std::string zoneOf(icalproperty* property, const icaltimetype& time) {
  if (icaltime_is_utc(time)) {
    return "UTC";
  }
  icalparameter* zone = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
  const char* identifier = zone == nullptr ? nullptr : icalparameter_get_tzid(zone);
  return identifier == nullptr || time.is_date != 0 ? "" : identifier;
}

std::optional<EventTime> eventTime(icalproperty* property, const icaltimetype& time) {
  const auto wall = wallTime(time);
  if (!wall.has_value()) {
    return std::nullopt;
  }
  return EventTime{.wall = *wall, .isDate = time.is_date != 0, .zone = zoneOf(property, time)};
}

void append(std::vector<EventTime>& times, std::optional<EventTime> time) {
  if (time.has_value()) {
    times.push_back(*std::move(time));
  }
}

/// An added date is a time or a period, of which the start matters.
icaltimetype startOf(const icaldatetimeperiodtype& date) {
  return icaltime_is_null_time(date.time) ? date.period.start : date.time;
}

bool changesFollowing(icalproperty* recurrenceID) {
  icalparameter* range = icalproperty_get_first_parameter(recurrenceID, ICAL_RANGE_PARAMETER);
  return range != nullptr && icalparameter_get_range(range) == ICAL_RANGE_THISANDFUTURE;
}

/// What the parser could not read it replaces by a remark that names the property.
bool remarksOnRecurrence(icalproperty* remark) {
  const char* text = icalproperty_get_xlicerror(remark);
  return text != nullptr && (std::string_view{text}.contains("RRULE") || std::string_view{text}.contains("RDATE"));
}

class EventParser {
 public:
  explicit EventParser(const std::set<std::string>& ownAddresses) : attendees_(ownAddresses) {}

  void readAll(icalcomponent* component) {
    for (icalproperty* property = icalcomponent_get_first_property(component, ICAL_ANY_PROPERTY); property != nullptr;
         property = icalcomponent_get_next_property(component, ICAL_ANY_PROPERTY)) {
      read(property);
    }
  }

  std::expected<CalendarEvent, CalendarSkip> finish() {
    if (!start_.has_value() && event_.cancelled) {
      start_ = event_.replaces; // A withdrawn occurrence need not say when it would have been.
    }
    if (event_.uid.empty()) {
      return std::unexpected(CalendarSkip::missingIdentifier);
    }
    if (!start_.has_value()) {
      return std::unexpected(CalendarSkip::missingStart);
    }
    event_.startsAt = *std::move(start_);
    event_.repeats = !event_.rules.empty() || !event_.additions.empty() || event_.unreadableRecurrence;
    event_.declinedByUser = attendees_.declinedByUser();
    event_.people = attendees_.people();
    return std::move(event_);
  }

 private:
  void read(icalproperty* property) {
    switch (icalproperty_isa(property)) {
      case ICAL_UID_PROPERTY:
        event_.uid = displayText(icalproperty_get_uid(property));
        break;
      case ICAL_SEQUENCE_PROPERTY:
        event_.sequence = icalproperty_get_sequence(property);
        break;
      case ICAL_DTSTAMP_PROPERTY:
        event_.writtenAt = icaltime_as_ical_string(icalproperty_get_dtstamp(property));
        break;
      case ICAL_STATUS_PROPERTY:
        event_.cancelled = icalproperty_get_status(property) == ICAL_STATUS_CANCELLED;
        break;
      case ICAL_SUMMARY_PROPERTY:
        event_.summary = displayText(icalproperty_get_summary(property));
        break;
      case ICAL_LOCATION_PROPERTY:
        event_.location = displayText(icalproperty_get_location(property));
        break;
      case ICAL_ORGANIZER_PROPERTY:
      case ICAL_ATTENDEE_PROPERTY:
        attendees_.add(property);
        break;
      default:
        readTime(property);
    }
  }

  void readTime(icalproperty* property) {
    switch (icalproperty_isa(property)) {
      case ICAL_DTSTART_PROPERTY:
        start_ = eventTime(property, icalproperty_get_dtstart(property));
        break;
      case ICAL_RECURRENCEID_PROPERTY:
        event_.replaces = eventTime(property, icalproperty_get_recurrenceid(property));
        event_.replacesFollowing = changesFollowing(property);
        break;
      case ICAL_RRULE_PROPERTY:
        event_.rules.push_back(icalproperty_get_rrule(property));
        break;
      case ICAL_RDATE_PROPERTY:
        append(event_.additions, eventTime(property, startOf(icalproperty_get_rdate(property))));
        break;
      case ICAL_EXDATE_PROPERTY:
        append(event_.exclusions, eventTime(property, icalproperty_get_exdate(property)));
        break;
      case ICAL_XLICERROR_PROPERTY:
        event_.unreadableRecurrence |= remarksOnRecurrence(property);
        break;
      default:
        break;
    }
  }

  CalendarEvent event_;
  std::optional<EventTime> start_;
  AttendeeList attendees_;
};

} // namespace

std::expected<CalendarEvent, CalendarSkip> parseCalendarEvent(const std::string& text,
                                                              const std::set<std::string>& ownAddresses) {
  const auto component = parseComponent(text, ICAL_VEVENT_COMPONENT);
  if (component == nullptr) {
    return std::unexpected(CalendarSkip::unreadable);
  }
  EventParser parser{ownAddresses};
  parser.readAll(component.get());
  return parser.finish();
}

std::optional<std::chrono::local_seconds> wallTime(const icaltimetype& time) {
  const std::chrono::year_month_day date{std::chrono::year{time.year},
                                         std::chrono::month{static_cast<unsigned>(time.month)},
                                         std::chrono::day{static_cast<unsigned>(time.day)}};
  const bool hasTime = time.is_date == 0;
  if (!date.ok() || time.year < 1 || time.year > 9999 ||
      (hasTime && (time.hour < 0 || time.hour > 23 || time.minute < 0 || time.minute > 59 || time.second < 0 ||
                   time.second > 60))) {
    return std::nullopt;
  }
  std::chrono::local_seconds wall = std::chrono::local_days{date};
  if (hasTime) {
    wall += std::chrono::hours{time.hour} + std::chrono::minutes{time.minute} + std::chrono::seconds{time.second};
  }
  return wall;
}

icaltimetype calendarTime(std::chrono::local_seconds wall, bool isDate) {
  const auto day = std::chrono::floor<std::chrono::days>(wall);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss time{wall - day};
  icaltimetype result = icaltime_null_time();
  result.year = static_cast<int>(date.year());
  result.month = static_cast<int>(static_cast<unsigned>(date.month()));
  result.day = static_cast<int>(static_cast<unsigned>(date.day()));
  result.is_date = isDate ? 1 : 0;
  if (!isDate) {
    result.hour = static_cast<int>(time.hours().count());
    result.minute = static_cast<int>(time.minutes().count());
    result.second = static_cast<int>(time.seconds().count());
  }
  return result;
}

} // namespace orvan
