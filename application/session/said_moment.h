#pragma once

#include <optional>
#include <string_view>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// What a day means of which nobody said the time.
enum class UnsaidTime {
  /// The day's first moment; of so many days or weeks from now, this time of day.
  beginning,
  /// Nine o'clock.
  morning,
};

/// Reads a moment to come as a person says it at `asOf`, in the user's time zone and in any case:
///
/// - a moment of its own, "2026-03-04T09:15:00+01:00";
/// - a day: "2026-03-04", "today", "tomorrow", a weekday such as "monday" (the next one, never today), or "3d", "2w",
///   "3 days", "2 weeks" from now;
/// - a day and a time of day: "tomorrow 9:30", "friday at 8am", "3d 18:00";
/// - a time of day alone: today's, or tomorrow's when that has passed;
/// - "2h", "90m", "2 hours", "30 minutes" from now.
///
/// Words like "in", "on" and "at" may stand before. Nothing when it is none of these.
std::optional<Instant> parseSaidMoment(std::string_view text, Instant asOf, UnsaidTime unsaid);

} // namespace orvan
