#pragma once

#include <optional>
#include <string_view>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Reads when a snooze is to end, as a person says it at `asOf` in the user's time zone: "2026-03-04T09:15:00+01:00",
/// "2026-03-04" (when that day begins), "3d" or "2w" (at this time of day in so many days or weeks), "tomorrow", or a
/// weekday such as "monday" (when the next one begins, never today). Nothing when it is none of these.
std::optional<Instant> parseSnoozeEnd(std::string_view text, Instant asOf);

} // namespace orvan
