#pragma once

#include <libical/ical.h>

#include <chrono>
#include <compare>
#include <cstdint>
#include <expected>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "application/import/calendar/calendar_meeting.h"
#include "application/import/calendar/calendar_source.h"

namespace orvan {

/// A time as an event states it.
struct EventTime {
  std::chrono::local_seconds wall;
  /// A day without a time; `wall` is its midnight.
  bool isDate = false;
  /// "UTC", a zone's identifier in the file, or empty for a time that is meant wherever the user is.
  std::string zone;
};

/// One event of a calendar file, understood.
struct CalendarEvent {
  std::string uid;
  std::int64_t sequence = 0;
  /// When this revision was written; sorts by time. Empty when the file does not say.
  std::string writtenAt;
  EventTime startsAt;
  /// Present when this event replaces an occurrence of another: that occurrence's original start.
  std::optional<EventTime> replaces;
  /// With `replaces`: the occurrences after that one change in the same way.
  bool replacesFollowing = false;
  bool cancelled = false;
  bool declinedByUser = false;
  bool repeats = false;
  bool unreadableRecurrence = false;
  /// Everyone but those who declined.
  std::vector<CalendarAttendee> people;
  std::string summary;
  std::string location;
  std::vector<icalrecurrencetype> rules;
  std::vector<EventTime> additions;
  std::vector<EventTime> exclusions;
};

/// Reads one event from its text, or says why it cannot be used.
std::expected<CalendarEvent, CalendarSkip> parseCalendarEvent(const std::string& text,
                                                              const std::set<std::string>& ownAddresses);

/// A calendar time as wall-clock time; nothing for a day or hour that no calendar has.
std::optional<std::chrono::local_seconds> wallTime(const icaltimetype& time);

/// Wall-clock time as a calendar time without a zone.
icaltimetype calendarTime(std::chrono::local_seconds wall, bool isDate);

} // namespace orvan
