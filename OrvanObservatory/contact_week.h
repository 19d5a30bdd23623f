#pragma once

#include <chrono>
#include <cstdint>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// The week that contact at `instant` is counted in: whole weeks of 604,800 seconds since 1970, in UTC.
constexpr std::int64_t contactWeekOf(Instant instant) noexcept {
  return std::chrono::floor<std::chrono::weeks>(instant).time_since_epoch().count();
}

} // namespace orvan
