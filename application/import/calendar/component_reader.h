#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "application/import/content_lines/content_line_reader.h"

namespace orvan {

/// One event or time zone of a calendar file, as text for the calendar parser.
struct ComponentText {
  enum class Kind { event, timeZone };

  Kind kind;
  /// Where it begins in the file.
  std::uint64_t offset;
  /// An event holds only the properties that make a meeting: no description, attachment or alarm.
  std::string text;
  /// The event's identifier as written; empty when it has none.
  std::string uid;
  bool tooLarge;
  /// Its end was found.
  bool closed;
};

/// Splits a calendar file into its events and time zones, so that the parser never sees more than one of them.
class ComponentReader {
 public:
  /// Throws Error(CalendarSourceError::cannotRead).
  explicit ComponentReader(const std::filesystem::path& file);

  /// The next event or time zone, or nothing at the end. Throws Error(CalendarSourceError::cannotRead).
  std::optional<ComponentText> next();
  /// The component that begins at `offset`.
  std::optional<ComponentText> at(std::uint64_t offset);

  /// Whether a calendar's beginning has been read.
  bool sawCalendar() const noexcept { return sawCalendar_; }
  /// Whether the calendar around the component read last withdraws its events rather than announcing them.
  bool withdrawsEvents() const noexcept { return withdrawsEvents_; }

 private:
  ComponentText read(ComponentText::Kind kind, const ContentLine& begin);

  ContentLineReader lines_;
  bool sawCalendar_ = false;
  bool withdrawsEvents_ = false;
};

} // namespace orvan
