#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "application/import/calendar/calendar_event.h"
#include "application/import/calendar/calendar_source.h"
#include "application/import/calendar/calendar_zones.h"

namespace orvan {

/// What the events of one identifier come to.
struct SeriesResult {
  /// In the order of time.
  std::vector<CalendarMeeting> meetings;
  std::map<CalendarSkip, std::size_t> skipped;
  std::map<CalendarNotice, std::size_t> notices;
};

/// Lists the meetings of one event: `revisions` are all events of one identifier, in the order of the file, those that
/// replace single occurrences among them.
SeriesResult expandSeries(const std::vector<CalendarEvent>& revisions, CalendarWindow window,
                          const std::set<std::string>& ownAddresses, CalendarZones& zones);

} // namespace orvan
