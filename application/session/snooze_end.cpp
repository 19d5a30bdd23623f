#include "application/session/snooze_end.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/local_time.h"

namespace orvan {
namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::local_seconds;

constexpr std::array<std::string_view, 7> weekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                   "thursday", "friday", "saturday"};
/// A century: enough for any snooze, and far from the end of the calendar.
constexpr int mostDays = 36525;

std::optional<local_days> parseDate(std::string_view text) {
  const auto midnight = parseInternetDateTime(std::string{text} + "T00:00:00Z");
  if (!midnight) {
    return std::nullopt;
  }
  return local_days{std::chrono::floor<days>(*midnight).time_since_epoch()};
}

std::optional<days> parseSpan(std::string_view text) {
  int count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc{} || end + 1 != text.data() + text.size() || count < 0 || count > mostDays) {
    return std::nullopt;
  }
  switch (*end) {
    case 'd':
      return days{count};
    case 'w':
      return days{std::min(count * 7, mostDays)};
    default:
      return std::nullopt;
  }
}

std::optional<days> daysUntilWeekday(std::string_view name, local_days today) {
  const auto found = std::ranges::find(weekdays, name);
  if (found == weekdays.end()) {
    return std::nullopt;
  }
  const std::chrono::weekday wanted{static_cast<unsigned>(found - weekdays.begin())};
  const auto until = wanted - std::chrono::weekday{today};
  return until == days{0} ? days{7} : until;
}

} // namespace

std::optional<Instant> parseSnoozeEnd(std::string_view text, Instant asOf) {
  std::string lowered{text};
  std::ranges::transform(lowered, lowered.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  if (const auto instant = parseInternetDateTime(text)) {
    return instant;
  }
  if (const auto date = parseDate(text)) {
    return instantOfLocalTime(*date);
  }
  const local_seconds now = localTimeOf(asOf);
  if (const auto span = parseSpan(lowered)) {
    return instantOfLocalTime(now + *span);
  }
  const auto today = std::chrono::floor<days>(now);
  if (lowered == "tomorrow") {
    return instantOfLocalTime(today + days{1});
  }
  if (const auto until = daysUntilWeekday(lowered, today)) {
    return instantOfLocalTime(today + *until);
  }
  return std::nullopt;
}

} // namespace orvan
