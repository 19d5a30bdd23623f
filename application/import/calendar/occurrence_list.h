#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <vector>

#include "application/import/calendar/calendar_event.h"

namespace orvan {

/// Turns an event's time into UTC.
using ToUtc = std::function<std::chrono::sys_seconds(const EventTime&)>;

struct OccurrenceList {
  /// The starts that the event's rules and additions give, its own start first; not sorted, and possibly repeated.
  /// Exclusions are not applied.
  std::vector<EventTime> starts;
  /// One of its rules never yields anything.
  bool ruleIsEmpty = false;
};

/// Lists an event's starts up to a wall-clock time, or says that they are too many.
std::expected<OccurrenceList, CalendarSkip> listOccurrences(const CalendarEvent& event, std::chrono::local_seconds upTo,
                                                            const ToUtc& toUtc);

} // namespace orvan
