#include "OrvanPlatform/internal/user_time_zone.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>

#include "OrvanPlatform/mutex.h"

namespace orvan::internal {
namespace {

constexpr const char* systemZone = "/etc/localtime";

/// Some systems keep a copy of the zone's rules instead of a link to them.
std::string fileSetting() {
  struct stat status = {};
  if (stat(systemZone, &status) != 0) {
    return {};
  }
  return std::to_string(status.st_ino) + ' ' + std::to_string(status.st_mtim.tv_sec) + '.' +
         std::to_string(status.st_mtim.tv_nsec);
}

} // namespace

std::string userTimeZoneSetting() {
  const char* zone = std::getenv("TZ"); // NOLINT(concurrency-mt-unsafe): callers may not change the environment.
  if (zone != nullptr && *zone != '\0') {
    return zone;
  }
  std::array<char, PATH_MAX> target{};
  const auto length = readlink(systemZone, target.data(), target.size());
  return length > 0 ? std::string{target.data(), static_cast<std::size_t>(length)} : fileSetting();
}

std::unique_ptr<icu::TimeZone> userTimeZone() {
  // ICU writes the name it finds into memory that all threads share, and takes no lock of its own here.
  static Mutex mutex;
  const MutexLock lock{mutex};
  return std::unique_ptr<icu::TimeZone>{icu::TimeZone::detectHostTimeZone()};
}

} // namespace orvan::internal
