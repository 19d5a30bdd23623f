#pragma once

#include <chrono>
#include <cstdint>

namespace orvan {

/// A point on the timeline, independent of time zones. Microseconds, because nanoseconds in 64 bits reach neither
/// year 1 nor year 9999.
using Instant = std::chrono::sys_time<std::chrono::microseconds>;

/// The first and last instants that have a four-digit year in UTC.
inline constexpr Instant earliestInstant = std::chrono::sys_days{std::chrono::year{1} / 1 / 1};
inline constexpr Instant latestInstant =
    std::chrono::sys_days{std::chrono::year{10000} / 1 / 1} - std::chrono::microseconds{1};

/// `instant` moved on, or back, by `days` days of 86400 seconds, held between earliestInstant and latestInstant: any
/// number of days is accepted, and the result always has a four-digit year.
Instant instantByAddingDays(Instant instant, std::int64_t days) noexcept;
Instant instantBySubtractingDays(Instant instant, std::int64_t days) noexcept;

} // namespace orvan
