#include "OrvanPlatform/human_date.h"

#include <unicode/datefmt.h>
#include <unicode/timezone.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "OrvanPlatform/user_locale.h"

namespace orvan {
namespace {

std::string_view environment(const char* name) {
  const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): the header states the condition.
  return value == nullptr ? std::string_view{} : std::string_view{value};
}

/// What decides the time zone: TZ, or where the system's zone link points. Only compared, never interpreted.
std::string zoneSetting() {
  if (const auto zone = environment("TZ"); !zone.empty()) {
    return std::string{zone};
  }
  std::array<char, PATH_MAX> target{};
  const auto length = readlink("/etc/localtime", target.data(), target.size());
  return length > 0 ? std::string{target.data(), static_cast<std::size_t>(length)} : std::string{};
}

/// Making a formatter costs some twenty times as much as using it, so each thread keeps the one it used last.
struct Formatter {
  std::string locale;
  std::string zone;
  std::unique_ptr<icu::DateFormat> format;
};

const icu::DateFormat* currentFormat() {
  thread_local Formatter kept;
  auto locale = userLocaleName();
  auto zone = zoneSetting();
  if (kept.format == nullptr || kept.locale != locale || kept.zone != zone) {
    kept.format.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, userLocale(locale)));
    if (kept.format != nullptr) {
      kept.format->adoptTimeZone(icu::TimeZone::detectHostTimeZone());
    }
    kept.locale = std::move(locale);
    kept.zone = std::move(zone);
  }
  return kept.format.get();
}

} // namespace

std::string humanDateText(Instant instant) {
  const icu::DateFormat* format = currentFormat();
  std::string text;
  if (format != nullptr) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(instant.time_since_epoch());
    icu::UnicodeString written;
    format->format(static_cast<UDate>(milliseconds.count()), written);
    written.toUTF8String(text);
  }
  return text;
}

std::string userTimeZoneName() {
  const std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::detectHostTimeZone()};
  icu::UnicodeString name;
  zone->getID(name);
  std::string text;
  name.toUTF8String(text);
  return text;
}

} // namespace orvan
