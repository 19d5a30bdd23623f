#pragma once

#include <libical/ical.h>

#include <set>
#include <string>
#include <vector>

#include "application/import/calendar/calendar_meeting.h"

namespace orvan {

/// Collects an event's organiser and attendees into the people of its meeting.
class AttendeeList {
 public:
  explicit AttendeeList(const std::set<std::string>& ownAddresses) : ownAddresses_(ownAddresses) {}

  void add(icalproperty* organizerOrAttendee);

  bool declinedByUser() const noexcept { return declinedByUser_; }
  /// Each address once, in the order of the event; without those who declined, except the user.
  std::vector<CalendarAttendee> people() const;

 private:
  void merge(CalendarAttendee attendee);

  const std::set<std::string>& ownAddresses_;
  std::vector<CalendarAttendee> listed_;
  std::set<std::string> declined_;
  bool declinedByUser_ = false;
};

/// Calendar text fit for showing: valid UTF-8, on one line, without blanks around it.
std::string displayText(const char* text);

} // namespace orvan
