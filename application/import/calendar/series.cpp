#include "application/import/calendar/series.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "application/import/calendar/occurrence_list.h"

namespace orvan {
namespace {

/// The start that an occurrence had before anyone moved it. A time without a zone is taken as though it were UTC, so
/// that an occurrence keeps its name wherever the user is.
using OccurrenceName = std::chrono::sys_seconds;

/// Reads an event's times: as instants, and as names of occurrences.
class EventClock {
 public:
  explicit EventClock(CalendarZones& zones) : zones_(zones) {}

  std::chrono::sys_seconds instant(const EventTime& time) const {
    const CalendarZone* zone = time.zone.empty() ? nullptr : zones_.find(time.zone);
    return asUtc(time) - (zone == nullptr ? CalendarZones::userZone() : *zone).offsetAt(time.wall);
  }

  OccurrenceName name(const EventTime& time) const {
    return zones_.find(time.zone) == nullptr ? asUtc(time) : instant(time);
  }

  bool knowsZoneOf(const EventTime& time) const { return time.zone.empty() || zones_.find(time.zone) != nullptr; }

 private:
  static std::chrono::sys_seconds asUtc(const EventTime& time) {
    return std::chrono::sys_seconds{time.wall.time_since_epoch()};
  }

  CalendarZones& zones_;
};

/// Exceptions are meant to be written like the start of the event they belong to, but some calendars write a day where
/// the event has a time, or a time where it has a day.
EventTime writtenLike(const EventTime& start, EventTime time) {
  const auto day = std::chrono::floor<std::chrono::days>(time.wall);
  if (time.isDate && !start.isDate) {
    time = start;
    time.wall = day + (start.wall - std::chrono::floor<std::chrono::days>(start.wall));
  } else if (start.isDate && !time.isDate) {
    time = start;
    time.wall = day;
  }
  return time;
}

/// One event of the series, and whether it gave a meeting.
struct Revision {
  CalendarEvent event;
  /// How far it moves the occurrence that it replaces.
  std::chrono::seconds shift{0};
  /// Why its occurrences could not be listed.
  std::optional<CalendarSkip> unlistable = std::nullopt;
  bool gaveMeeting = false;
};

class Series {
 public:
  Series(CalendarWindow window, const std::set<std::string>& ownAddresses, CalendarZones& zones)
      : window_(window), ownAddresses_(ownAddresses), clock_(zones) {}

  SeriesResult expand(const std::vector<CalendarEvent>& revisions) {
    for (const auto& event : revisions) {
      countNotices(event);
      if (!event.replaces.has_value()) {
        chooseMaster(event);
      }
    }
    for (const auto& event : revisions) {
      if (event.replaces.has_value()) {
        placeReplacement(event, *event.replaces);
      }
    }
    if (master_.has_value()) {
      listMaster(*master_);
    }
    for (auto& [name, revision] : replacements_) {
      yield(revision, name, clock_.instant(revision.event.startsAt));
    }
    countSkips();
    std::ranges::sort(result_.meetings, {},
                      [](const CalendarMeeting& one) { return std::tie(one.startsAt, one.recurrenceID); });
    return std::move(result_);
  }

 private:
  static bool isLater(const CalendarEvent& one, const CalendarEvent& other) {
    return std::tie(one.sequence, one.writtenAt) >= std::tie(other.sequence, other.writtenAt);
  }

  void chooseMaster(const CalendarEvent& event) {
    result_.skipped[CalendarSkip::superseded] += master_.has_value() ? 1 : 0;
    if (!master_.has_value() || isLater(event, master_->event)) {
      master_ = Revision{.event = event};
    }
  }

  void placeReplacement(const CalendarEvent& event, const EventTime& originalStart) {
    const auto original = master_.has_value() ? writtenLike(master_->event.startsAt, originalStart) : originalStart;
    const auto name = clock_.name(original);
    const auto known = replacements_.find(name);
    result_.skipped[CalendarSkip::superseded] += known == replacements_.end() ? 0 : 1;
    if (known == replacements_.end() || isLater(event, known->second.event)) {
      const auto shift = clock_.instant(event.startsAt) - clock_.instant(original);
      replacements_.insert_or_assign(name, Revision{.event = event, .shift = shift});
    }
  }

  void listMaster(Revision& master) {
    if (master.event.cancelled) {
      withdrawReplacements();
    }
    const auto occurrences =
        listOccurrences(master.event, lastUsefulWall(), [this](const EventTime& time) { return clock_.instant(time); });
    if (!occurrences.has_value()) {
      master.unlistable = occurrences.error();
      return;
    }
    if (occurrences->ruleIsEmpty && !master.event.unreadableRecurrence) {
      ++result_.notices[CalendarNotice::unreadableRecurrence];
    }
    for (const auto& [name, startsAt] : wanted(master.event, occurrences->starts)) {
      yieldOccurrence(master, name, startsAt);
    }
  }

  void withdrawReplacements() {
    for (auto& [name, revision] : replacements_) {
      revision.event.cancelled = true;
    }
  }

  /// Two days beyond the window hold every zone's offset; a change that moves its followers to an earlier time reaches
  /// as much further.
  std::chrono::local_seconds lastUsefulWall() const {
    auto earlier = std::chrono::seconds{0};
    for (const auto& [name, revision] : replacements_) {
      earlier = revision.event.replacesFollowing ? std::max(earlier, -revision.shift) : earlier;
    }
    const auto end = std::chrono::floor<std::chrono::seconds>(window_.to) + std::chrono::days{2} + earlier;
    return std::chrono::local_seconds{end.time_since_epoch()};
  }

  /// Each start once, without those excluded and those that a replacement stands for.
  std::map<OccurrenceName, std::chrono::sys_seconds> wanted(const CalendarEvent& master,
                                                            const std::vector<EventTime>& starts) const {
    std::map<OccurrenceName, std::chrono::sys_seconds> wanted;
    for (const auto& start : starts) {
      wanted.emplace(clock_.name(start), clock_.instant(start));
    }
    for (const auto& exclusion : master.exclusions) {
      wanted.erase(clock_.name(writtenLike(master.startsAt, exclusion)));
    }
    for (const auto& [name, replacement] : replacements_) {
      wanted.erase(name);
    }
    return wanted;
  }

  /// The occurrence as the event has it, or as the last change to it and its followers left it.
  void yieldOccurrence(Revision& master, OccurrenceName name, std::chrono::sys_seconds startsAt) {
    for (auto later = replacements_.lower_bound(name); later != replacements_.begin();) {
      --later;
      if (later->second.event.replacesFollowing) {
        yield(later->second, name, startsAt + later->second.shift);
        return;
      }
    }
    yield(master, name, startsAt);
  }

  void yield(Revision& revision, OccurrenceName name, std::chrono::sys_seconds startsAt) {
    if (reasonAgainst(revision.event).has_value() || startsAt < window_.from || startsAt >= window_.to) {
      return;
    }
    const bool repeats = revision.event.replaces.has_value() || revision.event.repeats || !replacements_.empty();
    result_.meetings.push_back({.uid = revision.event.uid,
                                .recurrenceID = repeats ? formatInternetDateTime(name) : std::string{},
                                .startsAt = startsAt,
                                .people = revision.event.people,
                                .summary = revision.event.summary,
                                .location = revision.event.location,
                                .isAllDay = revision.event.startsAt.isDate});
    revision.gaveMeeting = true;
  }

  std::optional<CalendarSkip> reasonAgainst(const CalendarEvent& event) const {
    if (event.cancelled) {
      return CalendarSkip::cancelled;
    }
    if (event.declinedByUser) {
      return CalendarSkip::declined;
    }
    const auto isOther = [this](const CalendarAttendee& one) { return !ownAddresses_.contains(one.address); };
    return std::ranges::none_of(event.people, isOther) ? std::optional{CalendarSkip::nobodyElse} : std::nullopt;
  }

  void countNotices(const CalendarEvent& event) {
    if (!clock_.knowsZoneOf(event.startsAt)) {
      ++result_.notices[CalendarNotice::unknownTimeZone];
    }
    if (event.unreadableRecurrence) {
      ++result_.notices[CalendarNotice::unreadableRecurrence];
    }
  }

  void countSkip(const Revision& revision) {
    if (!revision.gaveMeeting) {
      const auto reason = revision.unlistable.has_value() ? revision.unlistable : reasonAgainst(revision.event);
      ++result_.skipped[reason.value_or(CalendarSkip::outsideWindow)];
    }
  }

  void countSkips() {
    if (master_.has_value()) {
      countSkip(*master_);
    }
    for (const auto& [name, revision] : replacements_) {
      countSkip(revision);
    }
    std::erase_if(result_.skipped, [](const auto& count) { return count.second == 0; });
  }

  CalendarWindow window_;
  const std::set<std::string>& ownAddresses_;
  EventClock clock_;
  std::optional<Revision> master_;
  std::map<OccurrenceName, Revision> replacements_;
  SeriesResult result_;
};

} // namespace

SeriesResult expandSeries(const std::vector<CalendarEvent>& revisions, CalendarWindow window,
                          const std::set<std::string>& ownAddresses, CalendarZones& zones) {
  return Series{window, ownAddresses, zones}.expand(revisions);
}

} // namespace orvan
