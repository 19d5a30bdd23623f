#include "OrvanPlatform/local_time.h"

#include <ctime>

namespace orvan {
namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

/// How far the user's clock is ahead of UTC. The C library knows every form that TZ may have, which ICU does not.
seconds offsetAt(sys_seconds instant) {
  tzset(); // Only localtime() notes by itself that the setting has changed, and that one is not for several threads.
  const std::time_t time = instant.time_since_epoch().count();
  std::tm local{};
  return localtime_r(&time, &local) == nullptr ? seconds{0} : seconds{local.tm_gmtoff};
}

} // namespace

std::chrono::local_seconds localTimeOf(Instant instant) {
  const auto whole = std::chrono::floor<seconds>(instant);
  return std::chrono::local_seconds{whole.time_since_epoch() + offsetAt(whole)};
}

Instant instantOfLocalTime(std::chrono::local_seconds time, RepeatedTime repeated) {
  // No clock is more than a day from UTC, so these two offsets lie on both sides of a change near `time`.
  const sys_seconds asUtc{time.time_since_epoch()};
  const auto before = offsetAt(asUtc - std::chrono::days{1});
  const auto after = offsetAt(asUtc + std::chrono::days{1});
  const bool shownBefore = offsetAt(asUtc - before) == before;
  const bool shownAfter = offsetAt(asUtc - after) == after;
  if (shownAfter && (!shownBefore || repeated == RepeatedTime::later)) {
    return asUtc - after;
  }
  return asUtc - before;
}

} // namespace orvan
