#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/import/calendar/calendar_meeting.h"

namespace orvan {

/// Why a calendar file cannot be read at all.
enum class CalendarSourceError {
  cannotRead = 1,
  notACalendar,
};

std::error_code make_error_code(CalendarSourceError error) noexcept;

/// Why an event of the file gave no meeting.
enum class CalendarSkip {
  /// Nobody but the user is invited.
  nobodyElse,
  cancelled,
  /// The user declined.
  declined,
  outsideWindow,
  /// The file holds a later revision of the same event.
  superseded,
  missingIdentifier,
  /// The start is absent or cannot be read.
  missingStart,
  /// It repeats so often that its occurrences cannot be listed within reason.
  repeatsTooOften,
  /// It is longer than any event has a reason to be.
  tooLarge,
  /// It is not closed, or not an event.
  unreadable,
};

/// What was assumed about an event that was read all the same.
enum class CalendarNotice {
  /// Its time zone is neither defined in the file nor known: the user's zone was taken.
  unknownTimeZone,
  /// Its repetition could not be read: only its first occurrence was taken.
  unreadableRecurrence,
};

/// A sentence fragment for the user, as in "3 events skipped: cancelled".
const char* describe(CalendarSkip reason) noexcept;
const char* describe(CalendarNotice notice) noexcept;

/// The meetings that are wanted: those that start at `from` or later, and before `to`.
struct CalendarWindow {
  Instant from;
  Instant to;
};

/// Reads the meetings of one iCalendar file (RFC 5545), one event at a time: memory holds the identifiers and places of
/// the events and the time zones, never the events' texts.
///
/// An event is a meeting when somebody other than the user is invited or called it. Repeating events are expanded
/// within the window, with their exceptions, additions and moved or changed occurrences. The same file gives the same
/// meetings with the same names at every reading.
///
/// A calendar may also be kept in several files, mostly one for each event, that are read as though they were one.
///
/// The files must not change while they are read. One thread at a time.
class CalendarSource {
 public:
  /// Opens `file` and lists its events. `ownAddresses` are the user's mail addresses, as normalAddress() has them.
  /// All-day events and times without a zone are taken in the zone that the user is in now (see localTimeOf).
  ///
  /// Throws Error: CalendarSourceError::cannotRead for a file that cannot be opened or is not a regular file,
  /// CalendarSourceError::notACalendar when it holds no calendar.
  CalendarSource(const std::filesystem::path& file, CalendarWindow window, std::set<std::string> ownAddresses);
  /// The same of several files. Those that hold no calendar, where others do, count as unreadable events.
  CalendarSource(std::vector<std::filesystem::path> files, CalendarWindow window, std::set<std::string> ownAddresses);
  ~CalendarSource();
  CalendarSource(CalendarSource&&) noexcept;
  CalendarSource& operator=(CalendarSource&&) noexcept;

  /// The next meeting, or nothing at the end. Events come in the order of the file, the occurrences of an event in the
  /// order of time. Throws Error(cannotRead) when the file fails while it is read.
  std::optional<CalendarMeeting> next();

  /// How many events the file holds, counting each changed occurrence that it lists as one.
  std::size_t eventCount() const noexcept;
  /// How many of them next() is done with, those left out included.
  std::size_t eventsRead() const noexcept;
  /// Events that gave no meeting, by reason. Complete once next() has returned nothing.
  const std::map<CalendarSkip, std::size_t>& skipped() const noexcept;
  /// Assumptions made, by kind, each counted once per event. Complete once next() has returned nothing.
  const std::map<CalendarNotice, std::size_t>& notices() const noexcept;

 private:
  class Reading;
  std::unique_ptr<Reading> reading_;
};

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::CalendarSourceError> : std::true_type {};
