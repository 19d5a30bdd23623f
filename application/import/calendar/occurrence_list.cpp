#include "application/import/calendar/occurrence_list.h"

#include <algorithm>
#include <array>
#include <memory>

namespace orvan {
namespace {

/// A meeting every day since 1970 takes a fifth of this.
constexpr int mostSteps = 100'000;

struct FreeIterator {
  void operator()(icalrecur_iterator* iterator) const noexcept { icalrecur_iterator_free(iterator); }
};

/// Rules that the iterator may step through for minutes before it yields anything: those that count in less than hours,
/// and those that count hours and then drop most of them.
bool isTooFine(const icalrecurrencetype& rule) {
  if (rule.freq != ICAL_HOURLY_RECURRENCE) {
    return rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE;
  }
  const std::array filters{rule.by_month[0],   rule.by_month_day[0], rule.by_year_day[0], rule.by_day[0],
                           rule.by_week_no[0], rule.by_hour[0],      rule.by_set_pos[0]};
  return std::ranges::any_of(filters, [](short first) { return first != ICAL_RECURRENCE_ARRAY_MAX; });
}

/// Whether a start lies after the rule's end. Decided here rather than by the iterator, which knows no zones and takes
/// an end without a time of day for its midnight.
class RuleEnd {
 public:
  RuleEnd(const icaltimetype& until, const ToUtc& toUtc) : toUtc_(toUtc), end_(wallTime(until)) {
    isDate_ = until.is_date != 0;
    isUtc_ = icaltime_is_utc(until);
  }

  bool isBefore(const EventTime& start) const {
    if (!end_.has_value()) {
      return false;
    }
    if (isDate_ || start.isDate) {
      return std::chrono::floor<std::chrono::days>(start.wall) > std::chrono::floor<std::chrono::days>(*end_);
    }
    return isUtc_ ? toUtc_(start).time_since_epoch() > end_->time_since_epoch() : start.wall > *end_;
  }

 private:
  const ToUtc& toUtc_;
  std::optional<std::chrono::local_seconds> end_;
  bool isDate_;
  bool isUtc_;
};

/// Appends a rule's starts; false when there are too many.
bool appendRule(icalrecurrencetype rule, const EventTime& first, std::chrono::local_seconds upTo, const ToUtc& toUtc,
                OccurrenceList& list) {
  if (isTooFine(rule)) {
    return false;
  }
  const RuleEnd end{rule.until, toUtc};
  rule.until = icaltime_null_time();
  const std::unique_ptr<icalrecur_iterator, FreeIterator> iterator{
      icalrecur_iterator_new(rule, calendarTime(first.wall, first.isDate))};
  if (iterator == nullptr) {
    list.ruleIsEmpty = true;
    return true;
  }
  for (int step = 0; step < mostSteps; ++step) {
    const auto wall = wallTime(icalrecur_iterator_next(iterator.get()));
    if (!wall.has_value() || *wall > upTo) {
      return true;
    }
    EventTime start = first;
    start.wall = *wall;
    if (end.isBefore(start)) {
      return true;
    }
    list.starts.push_back(std::move(start));
  }
  return false;
}

} // namespace

std::expected<OccurrenceList, CalendarSkip> listOccurrences(const CalendarEvent& event, std::chrono::local_seconds upTo,
                                                            const ToUtc& toUtc) {
  OccurrenceList list{.starts = {event.startsAt}, .ruleIsEmpty = false};
  for (const auto& rule : event.rules) {
    if (!appendRule(rule, event.startsAt, upTo, toUtc, list)) {
      return std::unexpected(CalendarSkip::repeatsTooOften);
    }
  }
  list.starts.insert(list.starts.end(), event.additions.begin(), event.additions.end());
  return list;
}

} // namespace orvan
