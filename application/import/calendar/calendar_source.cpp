#include "application/import/calendar/calendar_source.h"

#include <cstdint>
#include <deque>
#include <expected>
#include <iterator>
#include <unordered_map>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/import/calendar/calendar_zones.h"
#include "application/import/calendar/component_reader.h"
#include "application/import/calendar/series.h"

namespace orvan {
namespace {

class CalendarSourceCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "calendar"; }
  std::string message(int code) const override {
    switch (static_cast<CalendarSourceError>(code)) {
      case CalendarSourceError::cannotRead:
        return "The calendar file cannot be read; check that it is there and that you may read it.";
      case CalendarSourceError::notACalendar:
        return "The file holds no calendar; name one in iCalendar form (.ics).";
    }
    return "The calendar cannot be read.";
  }
};

/// Where an event lies.
struct EventPlace {
  std::size_t file;
  std::uint64_t offset;
  bool withdrawn;
};

template <typename Reason>
void addCounts(std::map<Reason, std::size_t>& sums, const std::map<Reason, std::size_t>& counts) {
  for (const auto& [reason, count] : counts) {
    sums[reason] += count;
  }
}

} // namespace

std::error_code make_error_code(CalendarSourceError error) noexcept {
  static const CalendarSourceCategory category;
  return {static_cast<int>(error), category};
}

const char* describe(CalendarSkip reason) noexcept {
  switch (reason) {
    case CalendarSkip::nobodyElse:
      return "nobody else takes part";
    case CalendarSkip::cancelled:
      return "cancelled";
    case CalendarSkip::declined:
      return "declined";
    case CalendarSkip::outsideWindow:
      return "too long ago or too far ahead";
    case CalendarSkip::superseded:
      return "replaced by a later version";
    case CalendarSkip::missingIdentifier:
      return "no identifier";
    case CalendarSkip::missingStart:
      return "no readable start";
    case CalendarSkip::repeatsTooOften:
      return "repeats too often";
    case CalendarSkip::tooLarge:
      return "too large";
    case CalendarSkip::unreadable:
      return "not readable";
  }
  return "unknown reason";
}

const char* describe(CalendarNotice notice) noexcept {
  switch (notice) {
    case CalendarNotice::unknownTimeZone:
      return "unknown time zone, your own was taken";
    case CalendarNotice::unreadableRecurrence:
      return "repetition not readable, only the first occurrence was taken";
  }
  return "unknown notice";
}

/// The first pass lists which events belong together and learns the zones, since a file may put changed occurrences far
/// from the event they change and zones after their use. The second reads the events of one identifier at a time.
class CalendarSource::Reading {
 public:
  Reading(std::vector<std::filesystem::path> files, CalendarWindow window, std::set<std::string> ownAddresses)
      : files_(std::move(files)), window_(window), ownAddresses_(std::move(ownAddresses)) {
    std::size_t calendars = 0;
    for (std::size_t file = 0; file < files_.size(); ++file) {
      calendars += listFile(file) ? 1 : 0;
    }
    if (calendars == 0) {
      throw Error(CalendarSourceError::notACalendar, "reading the calendar file");
    }
    eventCount += files_.size() - calendars;
    for (std::size_t other = calendars; other < files_.size(); ++other) {
      leaveOut(CalendarSkip::unreadable);
    }
  }

  std::optional<CalendarMeeting> next() {
    while (meetings_.empty() && nextSeries_ < series_.size()) {
      expand(std::exchange(series_[nextSeries_++], {}));
    }
    if (meetings_.empty()) {
      return std::nullopt;
    }
    auto meeting = std::move(meetings_.front());
    meetings_.pop_front();
    return meeting;
  }

  std::size_t eventCount = 0;
  std::size_t eventsRead = 0;
  std::map<CalendarSkip, std::size_t> skipped;
  std::map<CalendarNotice, std::size_t> notices;

 private:
  /// Whether the file is a calendar.
  bool listFile(std::size_t file) {
    auto& components = open(file);
    while (const auto component = components.next()) {
      component->kind == ComponentText::Kind::timeZone ? learnZone(*component) : list(*component);
    }
    return components.sawCalendar();
  }

  /// One file at a time is open, however many there are.
  ComponentReader& open(std::size_t file) {
    if (!components_ || openFile_ != file) {
      components_.emplace(files_[file]);
      openFile_ = file;
    }
    return *components_;
  }

  void learnZone(const ComponentText& component) {
    if (component.closed && !component.tooLarge) {
      zones_.define(component.text);
    }
  }

  void list(const ComponentText& event) {
    ++eventCount;
    if (!event.closed) {
      leaveOut(CalendarSkip::unreadable);
    } else if (event.tooLarge) {
      leaveOut(CalendarSkip::tooLarge);
    } else if (event.uid.empty()) {
      leaveOut(CalendarSkip::missingIdentifier);
    } else {
      const auto [known, isNew] = seriesByUID_.try_emplace(event.uid, series_.size());
      if (isNew) {
        series_.emplace_back();
      }
      series_[known->second].push_back(
          {.file = openFile_, .offset = event.offset, .withdrawn = components_->withdrawsEvents()});
    }
  }

  void leaveOut(CalendarSkip reason) {
    ++skipped[reason];
    ++eventsRead;
  }

  void expand(const std::vector<EventPlace>& places) {
    eventsRead += places.size();
    std::vector<CalendarEvent> revisions;
    for (const auto& place : places) {
      auto event = read(place);
      if (event.has_value()) {
        revisions.push_back(*std::move(event));
      } else {
        ++skipped[event.error()];
      }
    }
    auto result = expandSeries(revisions, window_, ownAddresses_, zones_);
    addCounts(skipped, result.skipped);
    addCounts(notices, result.notices);
    meetings_.assign(std::make_move_iterator(result.meetings.begin()), std::make_move_iterator(result.meetings.end()));
  }

  std::expected<CalendarEvent, CalendarSkip> read(const EventPlace& place) {
    const auto component = open(place.file).at(place.offset);
    if (!component.has_value()) {
      throw Error(CalendarSourceError::cannotRead, "reading an event of the calendar file again");
    }
    auto event = parseCalendarEvent(component->text, ownAddresses_);
    if (event.has_value()) {
      event->cancelled |= place.withdrawn;
    }
    return event;
  }

  std::vector<std::filesystem::path> files_;
  std::optional<ComponentReader> components_;
  std::size_t openFile_ = 0;
  CalendarWindow window_;
  std::set<std::string> ownAddresses_;
  CalendarZones zones_;
  std::unordered_map<std::string, std::size_t> seriesByUID_;
  std::vector<std::vector<EventPlace>> series_;
  std::size_t nextSeries_ = 0;
  std::deque<CalendarMeeting> meetings_;
};

CalendarSource::CalendarSource(const std::filesystem::path& file, CalendarWindow window,
                               std::set<std::string> ownAddresses)
    : CalendarSource(std::vector{file}, window, std::move(ownAddresses)) {}

CalendarSource::CalendarSource(std::vector<std::filesystem::path> files, CalendarWindow window,
                               std::set<std::string> ownAddresses)
    : reading_(std::make_unique<Reading>(std::move(files), window, std::move(ownAddresses))) {}

CalendarSource::~CalendarSource() = default;
CalendarSource::CalendarSource(CalendarSource&&) noexcept = default;
CalendarSource& CalendarSource::operator=(CalendarSource&&) noexcept = default;

std::optional<CalendarMeeting> CalendarSource::next() {
  return reading_->next();
}

std::size_t CalendarSource::eventCount() const noexcept {
  return reading_->eventCount;
}

std::size_t CalendarSource::eventsRead() const noexcept {
  return reading_->eventsRead;
}

const std::map<CalendarSkip, std::size_t>& CalendarSource::skipped() const noexcept {
  return reading_->skipped;
}

const std::map<CalendarNotice, std::size_t>& CalendarSource::notices() const noexcept {
  return reading_->notices;
}

} // namespace orvan
