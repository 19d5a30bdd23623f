#pragma once

#include <string>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// The date of an instant as its reader writes dates, without a time of day: the medium date of the user's locale,
/// calendar and time zone ("Mar 4, 2026" in United States English). UTF-8.
///
/// Locale and zone are looked up at each call, in the environment (LC_ALL, LC_TIME, LANG; TZ) and the system's zone
/// setting, so a change while the program runs takes effect. May be called from any thread, but not while another
/// thread changes the environment.
std::string humanDateText(Instant instant);

/// The same with the time of day in hours and minutes: "Mar 4, 2026, 9:15 AM".
std::string humanMomentText(Instant instant);

/// The month of it alone, with its year: "Mar 2026".
std::string humanMonthText(Instant instant);

} // namespace orvan
