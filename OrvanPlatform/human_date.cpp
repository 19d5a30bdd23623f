#include "OrvanPlatform/human_date.h"

#include <unicode/datefmt.h>

#include <memory>

#include "OrvanPlatform/internal/user_locale.h"
#include "OrvanPlatform/internal/user_time_zone.h"

namespace orvan {
namespace {

/// Making a formatter costs some twenty times as much as using it, so each thread keeps the one it used last.
struct Formatter {
  std::string locale;
  std::string zone;
  std::unique_ptr<icu::DateFormat> format;
};

const icu::DateFormat* currentFormat() {
  thread_local Formatter kept;
  auto locale = internal::userLocaleName();
  auto zone = internal::userTimeZoneSetting();
  if (kept.format == nullptr || kept.locale != locale || kept.zone != zone) {
    kept.format.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, internal::userLocale(locale)));
    if (kept.format != nullptr) {
      kept.format->adoptTimeZone(internal::userTimeZone().release());
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
  icu::UnicodeString name;
  internal::userTimeZone()->getID(name);
  std::string text;
  name.toUTF8String(text);
  return text;
}

} // namespace orvan
