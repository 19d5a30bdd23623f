#pragma once

#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Someone who is invited to a meeting or who called it.
struct CalendarAttendee {
  /// The name that the calendar gives, UTF-8; empty when it gives none.
  std::string displayName;
  /// The mail address as normalAddress() has it.
  std::string address;

  friend bool operator==(const CalendarAttendee&, const CalendarAttendee&) = default;
};

/// One meeting at one time: a single event, or one occurrence of a repeating event.
struct CalendarMeeting {
  /// The calendar's identifier of the event. All occurrences of a repeating event share it.
  std::string uid;
  /// Names the occurrence within its event, and stays when the occurrence is moved: the UTC text of the start that the
  /// repetition gave it. Empty for an event that does not repeat. An all-day or floating start is written as though it
  /// were UTC, so that the name does not change when the user travels.
  std::string recurrenceID;
  /// Whole seconds.
  Instant startsAt;
  /// The organiser and the people invited, each address once, the user among them when the calendar lists the user.
  /// Rooms, equipment and group addresses are left out, and so is everyone else who declined.
  std::vector<CalendarAttendee> people;
  /// UTF-8; empty when the event has no title.
  std::string summary;
  /// Where it takes place, on one line; empty when the event does not say.
  std::string location = {};
  /// It is on a day, or several, and at no time of day; `startsAt` is then the first midnight.
  bool isAllDay = false;

  friend bool operator==(const CalendarMeeting&, const CalendarMeeting&) = default;
};

} // namespace orvan
