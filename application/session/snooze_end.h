#pragma once

#include <optional>
#include <string_view>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Reads when a snooze is to end, as parseSaidMoment() reads it: a day without a time ends it when that day begins, and
/// "3d" or "2w" at this time of day in so many days or weeks. Nothing when it is no moment.
std::optional<Instant> parseSnoozeEnd(std::string_view text, Instant asOf);

} // namespace orvan
