#include "application/import/calendar/component_reader.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "application/import/calendar/calendar_source.h"

namespace orvan {
namespace {

constexpr std::size_t longestComponent = 1024UZ * 1024UZ;

constexpr std::array<std::string_view, 13> eventProperties{
    "UID",    "SEQUENCE", "DTSTAMP", "DTSTART",  "RECURRENCE-ID", "RRULE",   "RDATE",
    "EXDATE", "STATUS",   "SUMMARY", "LOCATION", "ORGANIZER",     "ATTENDEE"};

bool isEventProperty(std::string_view name) {
  return std::ranges::find(eventProperties, name) != eventProperties.end();
}

std::string upperCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

/// "BEGIN:VEVENT" and the like in upper case, and "" for every other line.
std::string delimiter(const ContentLine& line) {
  const auto name = line.name();
  return name == "BEGIN" || name == "END" ? name + ":" + upperCase(line.value()) : std::string{};
}

/// Appends what the parser is to see of one component: of an event only the properties that make a meeting, and nothing
/// of what lies nested in it; of a time zone everything.
class ComponentBuilder {
 public:
  explicit ComponentBuilder(ComponentText& component) : component_(component) {}

  void add(const ContentLine& line, std::string_view lineDelimiter) {
    const bool isEvent = component_.kind == ComponentText::Kind::event;
    if (isEvent && lineDelimiter.starts_with("BEGIN:")) {
      ++depth_;
    } else if (isEvent && lineDelimiter.starts_with("END:")) {
      depth_ = std::max(depth_ - 1, 0);
    } else if (!isEvent || (depth_ == 0 && isEventProperty(line.name()))) {
      append(line);
    }
  }

 private:
  void append(const ContentLine& line) {
    component_.tooLarge |= line.cut || component_.text.size() + line.text.size() > longestComponent;
    if (component_.tooLarge) {
      return;
    }
    component_.text += line.text + "\r\n";
    if (component_.kind == ComponentText::Kind::event && line.name() == "UID") {
      component_.uid = line.value();
    }
  }

  ComponentText& component_;
  int depth_ = 0;
};

} // namespace

ComponentReader::ComponentReader(const std::filesystem::path& file) : lines_(file, CalendarSourceError::cannotRead) {}

std::optional<ComponentText> ComponentReader::next() {
  while (const auto line = lines_.next()) {
    const auto what = delimiter(*line);
    if (what == "BEGIN:VCALENDAR") {
      sawCalendar_ = true;
      withdrawsEvents_ = false;
    } else if (what == "BEGIN:VEVENT") {
      return read(ComponentText::Kind::event, *line);
    } else if (what == "BEGIN:VTIMEZONE") {
      return read(ComponentText::Kind::timeZone, *line);
    } else if (line->name() == "METHOD") {
      withdrawsEvents_ = upperCase(line->value()) == "CANCEL";
    }
  }
  return std::nullopt;
}

std::optional<ComponentText> ComponentReader::at(std::uint64_t offset) {
  lines_.seek(offset);
  return next();
}

ComponentText ComponentReader::read(ComponentText::Kind kind, const ContentLine& begin) {
  const std::string end = kind == ComponentText::Kind::event ? "END:VEVENT" : "END:VTIMEZONE";
  ComponentText component{
      .kind = kind, .offset = begin.offset, .text = begin.text + "\r\n", .uid = {}, .tooLarge = false, .closed = false};
  ComponentBuilder builder{component};
  while (const auto line = lines_.next()) {
    const auto what = delimiter(*line);
    if (what == end) {
      component.text += end + "\r\n";
      component.closed = true;
      return component;
    }
    if (what == "BEGIN:VEVENT" || what == "BEGIN:VTIMEZONE" || what.ends_with(":VCALENDAR")) {
      lines_.seek(line->offset); // This one was never closed; what follows is another's.
      return component;
    }
    builder.add(*line, what);
  }
  return component;
}

} // namespace orvan
