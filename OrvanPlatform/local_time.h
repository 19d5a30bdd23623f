#pragma once

#include <chrono>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// What a wall clock and a Gregorian calendar show in the user's time zone, as the settings are now: TZ in any form
/// that the C library reads (a name of the zone database, a file, a rule such as "CET-1CEST,M3.5.0,M10.5.0/3"), else
/// the system's zone. An instant beyond what the C library reckons with is read in UTC. May be called from any thread,
/// but not while another thread changes the environment.
std::chrono::local_seconds localTimeOf(Instant instant);

/// Which of two instants is meant by a time that the wall clock shows twice.
enum class RepeatedTime { earlier, later };

/// The instant at which the user's wall clock shows `time`. A time that a change of the clocks skips is read with the
/// offset from before the change.
Instant instantOfLocalTime(std::chrono::local_seconds time, RepeatedTime repeated = RepeatedTime::earlier);

} // namespace orvan
