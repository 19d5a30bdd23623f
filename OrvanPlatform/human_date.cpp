#include "OrvanPlatform/human_date.h"

#include <unicode/datefmt.h>

#include <memory>

#include "OrvanPlatform/internal/user_locale.h"
#include "OrvanPlatform/local_time.h"

namespace orvan {
namespace {

/// Making a formatter costs some twenty times as much as using it, so each thread keeps the one it used last.
struct Formatter {
  std::string locale;
  std::unique_ptr<icu::DateFormat> format;
};

const icu::DateFormat* currentFormat() {
  thread_local Formatter kept;
  auto locale = internal::userLocaleName();
  if (kept.format == nullptr || kept.locale != locale) {
    kept.format.reset(icu::DateFormat::createDateInstance(icu::DateFormat::kMedium, internal::userLocale(locale)));
    if (kept.format != nullptr) {
      kept.format->setTimeZone(*icu::TimeZone::getGMT());
    }
    kept.locale = std::move(locale);
  }
  return kept.format.get();
}

} // namespace

std::string humanDateText(Instant instant) {
  const icu::DateFormat* format = currentFormat();
  std::string text;
  if (format != nullptr) {
    const auto local = std::chrono::milliseconds{localTimeOf(instant).time_since_epoch()};
    icu::UnicodeString written;
    format->format(static_cast<UDate>(local.count()), written);
    written.toUTF8String(text);
  }
  return text;
}

} // namespace orvan
