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

/// Brings `kept` up to the settings of the moment.
template <typename Make>
const icu::DateFormat* currentFormat(Formatter& kept, Make make) {
  auto locale = internal::userLocaleName();
  if (kept.format == nullptr || kept.locale != locale) {
    kept.format.reset(make(internal::userLocale(locale)));
    if (kept.format != nullptr) {
      kept.format->setTimeZone(*icu::TimeZone::getGMT());
    }
    kept.locale = std::move(locale);
  }
  return kept.format.get();
}

const icu::DateFormat* currentFormat(Formatter& kept, icu::DateFormat::EStyle timeStyle) {
  return currentFormat(kept, [timeStyle](const icu::Locale& locale) {
    return icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, timeStyle, locale);
  });
}

icu::UnicodeString formatted(Instant instant, const icu::DateFormat* format) {
  icu::UnicodeString written;
  if (format != nullptr) {
    const auto local = std::chrono::milliseconds{localTimeOf(instant).time_since_epoch()};
    format->format(static_cast<UDate>(local.count()), written);
  }
  return written;
}

} // namespace

std::string humanDateText(Instant instant) {
  thread_local Formatter kept;
  std::string text;
  formatted(instant, currentFormat(kept, icu::DateFormat::kNone)).toUTF8String(text);
  return text;
}

std::string humanMonthText(Instant instant) {
  thread_local Formatter kept;
  const auto* format = currentFormat(kept, [](const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    return icu::DateFormat::createInstanceForSkeleton(UDAT_YEAR_ABBR_MONTH, locale, status);
  });
  std::string text;
  formatted(instant, format).toUTF8String(text);
  return text;
}

std::string humanMomentText(Instant instant) {
  thread_local Formatter kept;
  auto written = formatted(instant, currentFormat(kept, icu::DateFormat::kShort));
  // Many fonts and terminals have no narrow blank, which stands before "AM".
  constexpr char16_t narrowNoBreakBlank = u'\u202f';
  written.findAndReplace(icu::UnicodeString{narrowNoBreakBlank}, icu::UnicodeString{u' '});
  std::string text;
  written.toUTF8String(text);
  return text;
}

} // namespace orvan
