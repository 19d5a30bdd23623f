#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// Reads an Internet date-time as RFC 3339 defines it, without fractional seconds: "2026-03-04T09:15:00Z" or
/// "2026-03-04T09:15:00+01:00".
///
/// The whole text must have that form. Refused are: fractional seconds, a missing zone, an offset without its colon, a
/// lower-case "t" or "z", a blank in place of "T", second 60, hour 24, a day that the calendar does not have, and the
/// year 0000. This one reading decides everywhere whether a stored timestamp is usable.
std::optional<Instant> parseInternetDateTime(std::string_view text) noexcept;

/// Writes an instant as "2026-03-04T09:15:00Z": UTC, whole seconds (a fraction is dropped, towards the past). The texts
/// of two instants sort as the instants do. An instant outside years 0001 to 9999 is written as the nearest end.
std::string formatInternetDateTime(Instant instant);

} // namespace orvan
