#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>

namespace orvan {

/// A rule that turns wall-clock time into UTC.
class CalendarZone {
 public:
  virtual ~CalendarZone() = default;
  /// How far the zone is ahead of UTC at a wall-clock time. A time that occurs twice is its first occurrence; a time
  /// that is skipped counts on from before the skip.
  virtual std::chrono::seconds offsetAt(std::chrono::local_seconds wall) const = 0;
};

/// The time zones that a calendar file may name: those it defines, then those of the zone database by their own names
/// and by Windows' names for them.
class CalendarZones {
 public:
  /// Learns a zone from the text of its definition in the file. The first definition of a name holds. A definition that
  /// cannot be followed, or would take unreasonably long to, is passed over.
  void define(const std::string& definition);

  /// The zone that the user is in now.
  static const CalendarZone& userZone() noexcept;
  /// The zone that the file means by `identifier`, or null when nobody knows it.
  const CalendarZone* find(const std::string& identifier);

 private:
  /// By the file's identifier; null for an identifier that is known to be unknown.
  std::map<std::string, std::unique_ptr<CalendarZone>> zones_;
};

} // namespace orvan
