#pragma once

#include <unicode/timezone.h>

#include <memory>
#include <string>

namespace orvan::internal {

/// What decides the user's time zone at the moment. Only to be compared: as long as it reads the same, the zone is the
/// same.
std::string userTimeZoneSetting();

/// The time zone the user is in now, as ICU knows it. May be called from any thread.
std::unique_ptr<icu::TimeZone> userTimeZone();

} // namespace orvan::internal
