#include "OrvanPlatform/internet_date_time.h"

#include <algorithm>

namespace orvan {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::size_t lengthWithoutZone = std::string_view("2026-03-04T09:15:00").size();
constexpr std::size_t lengthOfOffset = std::string_view("+01:00").size();

/// The two digits at `position`, or -1 when they are not digits.
int twoDigits(std::string_view text, std::size_t position) noexcept {
  const int tens = text[position] - '0';
  const int ones = text[position + 1] - '0';
  if (tens < 0 || tens > 9 || ones < 0 || ones > 9) {
    return -1;
  }
  return tens * 10 + ones;
}

bool hasSeparators(std::string_view text) noexcept {
  return text[4] == '-' && text[7] == '-' && text[10] == 'T' && text[13] == ':' && text[16] == ':';
}

std::optional<std::chrono::sys_days> parseDate(std::string_view text) noexcept {
  const int century = twoDigits(text, 0);
  const int yearOfCentury = twoDigits(text, 2);
  const int month = twoDigits(text, 5);
  const int day = twoDigits(text, 8);
  if (century < 0 || yearOfCentury < 0 || month < 0 || day < 0) {
    return std::nullopt;
  }
  const std::chrono::year_month_day date{std::chrono::year{century * 100 + yearOfCentury},
                                         std::chrono::month{static_cast<unsigned>(month)},
                                         std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok() || date.year() < std::chrono::year{1}) {
    return std::nullopt;
  }
  return std::chrono::sys_days{date};
}

std::optional<seconds> parseTimeOfDay(std::string_view text) noexcept {
  const int hour = twoDigits(text, 11);
  const int minute = twoDigits(text, 14);
  const int second = twoDigits(text, 17);
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return std::nullopt;
  }
  return hours{hour} + minutes{minute} + seconds{second};
}

std::optional<seconds> parseZone(std::string_view zone) noexcept {
  if (zone == "Z") {
    return seconds{0};
  }
  if (zone.size() != lengthOfOffset || (zone[0] != '+' && zone[0] != '-') || zone[3] != ':') {
    return std::nullopt;
  }
  const int hour = twoDigits(zone, 1);
  const int minute = twoDigits(zone, 4);
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59) {
    return std::nullopt;
  }
  const seconds offset = hours{hour} + minutes{minute};
  return zone[0] == '-' ? -offset : offset;
}

void appendDigits(std::string& text, unsigned value, int width) {
  text.append(static_cast<std::size_t>(width), '0');
  for (auto digit = text.rbegin(); value > 0; ++digit, value /= 10) {
    *digit = static_cast<char>('0' + value % 10);
  }
}

} // namespace

std::optional<Instant> parseInternetDateTime(std::string_view text) noexcept {
  if (text.size() <= lengthWithoutZone || !hasSeparators(text)) {
    return std::nullopt;
  }
  const auto date = parseDate(text);
  const auto timeOfDay = parseTimeOfDay(text);
  const auto offset = parseZone(text.substr(lengthWithoutZone));
  if (!date || !timeOfDay || !offset) {
    return std::nullopt;
  }
  return *date + *timeOfDay - *offset;
}

std::string formatInternetDateTime(Instant instant) {
  const auto whole = std::chrono::floor<seconds>(std::clamp(instant, earliestInstant, latestInstant));
  const auto day = std::chrono::floor<std::chrono::days>(whole);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss time{whole - day};

  std::string text;
  text.reserve(lengthWithoutZone + 1);
  appendDigits(text, static_cast<unsigned>(static_cast<int>(date.year())), 4);
  text += '-';
  appendDigits(text, static_cast<unsigned>(date.month()), 2);
  text += '-';
  appendDigits(text, static_cast<unsigned>(date.day()), 2);
  text += 'T';
  appendDigits(text, static_cast<unsigned>(time.hours().count()), 2);
  text += ':';
  appendDigits(text, static_cast<unsigned>(time.minutes().count()), 2);
  text += ':';
  appendDigits(text, static_cast<unsigned>(time.seconds().count()), 2);
  text += 'Z';
  return text;
}

} // namespace orvan
