#include "OrvanPlatform/local_time.h"

#include <unicode/basictz.h>

#include "OrvanPlatform/internal/user_time_zone.h"

namespace orvan {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

UDate asDate(seconds sinceEpoch) {
  return static_cast<UDate>(milliseconds{sinceEpoch}.count());
}

} // namespace

std::chrono::local_seconds localTimeOf(Instant instant) {
  const auto sinceEpoch = std::chrono::floor<seconds>(instant).time_since_epoch();
  std::int32_t standard = 0;
  std::int32_t daylight = 0;
  UErrorCode status = U_ZERO_ERROR;
  internal::userTimeZone()->getOffset(asDate(sinceEpoch), 0, standard, daylight, status);
  return std::chrono::local_seconds{sinceEpoch +
                                    std::chrono::duration_cast<seconds>(milliseconds{standard + daylight})};
}

Instant instantOfLocalTime(std::chrono::local_seconds time) {
  const auto zone = internal::userTimeZone();
  std::int32_t standard = 0;
  std::int32_t daylight = 0;
  UErrorCode status = U_ZERO_ERROR;
  if (const auto* rules = dynamic_cast<const icu::BasicTimeZone*>(zone.get())) {
    rules->getOffsetFromLocal(asDate(time.time_since_epoch()), UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, standard,
                              daylight, status);
  } else {
    zone->getOffset(asDate(time.time_since_epoch()), 1, standard, daylight, status);
  }
  const auto offset = std::chrono::duration_cast<seconds>(milliseconds{standard + daylight});
  return Instant{time.time_since_epoch() - offset};
}

} // namespace orvan
