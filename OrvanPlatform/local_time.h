#pragma once

#include <chrono>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// What a wall clock and a Gregorian calendar show in the user's time zone, as the settings are now (TZ and the
/// system's setting). May be called from any thread, but not while another thread changes the environment.
std::chrono::local_seconds localTimeOf(Instant instant);

/// The instant at which the user's wall clock shows `time`. A time that a change of the clocks skips is read with the
/// offset from before the change; one that it repeats is the earlier one.
Instant instantOfLocalTime(std::chrono::local_seconds time);

} // namespace orvan
