#include "application/session/said_moment.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <span>
#include <string>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/local_time.h"

namespace orvan {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::local_days;
using std::chrono::local_seconds;
using std::chrono::minutes;

using Words = std::vector<std::string>;

constexpr std::array<std::string_view, 7> weekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                   "thursday", "friday", "saturday"};
/// A century: enough for anything, and far from the end of the calendar.
constexpr int mostDays = 36525;
constexpr minutes morning = hours{9};

Words wordsIn(std::string_view text) {
  Words words;
  bool isInWord = false;
  for (const char letter : text) {
    const bool isBlank = letter == ' ' || letter == '\t';
    if (!isBlank && !isInWord) {
      words.emplace_back();
    }
    if (!isBlank) {
      words.back() += letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    isInWord = !isBlank;
  }
  return words;
}

/// A number and what it counts.
struct Count {
  int number;
  std::string_view unit;
};

std::optional<Count> countIn(std::string_view word) {
  int number = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc{} || number < 0) {
    return std::nullopt;
  }
  return Count{number, word.substr(static_cast<std::size_t>(end - word.data()))};
}

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::ranges::find(words, word) != words.end();
}

/// Leaves out what says nothing, and puts a number and the unit behind it together.
Words tellingWords(const Words& words) {
  Words telling;
  for (const auto& word : words) {
    if (isOneOf(word, {"in", "on", "at"})) {
      continue;
    }
    const bool isUnit =
        isOneOf(word, {"day", "days", "week", "weeks", "hour", "hours", "minute", "minutes", "am", "pm"});
    const bool isBehindNumber = !telling.empty() && countIn(telling.back()).has_value();
    if (isUnit && isBehindNumber) {
      telling.back() += word;
    } else {
      telling.push_back(word);
    }
  }
  return telling;
}

std::optional<minutes> spanWithinADay(std::string_view word) {
  const auto count = countIn(word);
  if (!count || count->number > mostDays) {
    return std::nullopt;
  }
  if (isOneOf(count->unit, {"h", "hour", "hours"})) {
    return hours{count->number};
  }
  return isOneOf(count->unit, {"m", "min", "minute", "minutes"}) ? std::optional{minutes{count->number}} : std::nullopt;
}

std::optional<days> spanOfDays(std::string_view word) {
  const auto count = countIn(word);
  if (!count || count->number > mostDays) {
    return std::nullopt;
  }
  if (isOneOf(count->unit, {"d", "day", "days"})) {
    return days{count->number};
  }
  return isOneOf(count->unit, {"w", "week", "weeks"}) ? std::optional{days{std::min(count->number * 7, mostDays)}}
                                                      : std::nullopt;
}

/// "9:30", "14:00", "8am", "8:30pm"
std::optional<minutes> timeOfDay(std::string_view word) {
  const auto hour = countIn(word);
  if (!hour) {
    return std::nullopt;
  }
  auto rest = hour->unit;
  int minute = 0;
  const bool hasMinutes = rest.size() >= 3 && rest[0] == ':';
  if (hasMinutes) {
    const auto [end, error] = std::from_chars(rest.data() + 1, rest.data() + 3, minute);
    if (error != std::errc{} || end != rest.data() + 3 || minute > 59) {
      return std::nullopt;
    }
    rest.remove_prefix(3);
  }
  if (isOneOf(rest, {"am", "pm"}) && hour->number >= 1 && hour->number <= 12) {
    return hours{hour->number % 12 + (rest == "pm" ? 12 : 0)} + minutes{minute};
  }
  return rest.empty() && hasMinutes && hour->number <= 23 ? std::optional{hours{hour->number} + minutes{minute}}
                                                          : std::nullopt;
}

std::optional<local_days> dateIn(std::string_view word) {
  const auto midnight = parseInternetDateTime(std::string{word} + "T00:00:00Z");
  if (!midnight) {
    return std::nullopt;
  }
  return local_days{std::chrono::floor<days>(*midnight).time_since_epoch()};
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

std::optional<local_days> dayIn(std::string_view word, local_days today) {
  if (word == "today" || word == "tomorrow") {
    return today + days{word == "today" ? 0 : 1};
  }
  if (const auto span = spanOfDays(word)) {
    return today + *span;
  }
  if (const auto until = daysUntilWeekday(word, today)) {
    return today + *until;
  }
  return dateIn(word);
}

/// The time of day that a day has when nobody said one.
std::chrono::seconds timeLeftUnsaid(std::string_view day, local_seconds now, UnsaidTime unsaid) {
  if (unsaid == UnsaidTime::morning) {
    return morning;
  }
  return spanOfDays(day) ? now - std::chrono::floor<days>(now) : std::chrono::seconds{0};
}

std::optional<local_seconds> localMoment(std::span<const std::string> words, local_seconds now, UnsaidTime unsaid) {
  const auto today = std::chrono::floor<days>(now);
  const auto time = timeOfDay(words.back());
  if (words.size() == 1 && time) {
    return today + *time > now ? today + *time : today + days{1} + *time;
  }
  const auto day = dayIn(words.front(), today);
  if (!day || words.size() > 2 || (words.size() == 2 && !time)) {
    return std::nullopt;
  }
  return words.size() == 2 ? *day + *time : *day + timeLeftUnsaid(words.front(), now, unsaid);
}

} // namespace

std::optional<Instant> parseSaidMoment(std::string_view text, Instant asOf, UnsaidTime unsaid) {
  if (const auto instant = parseInternetDateTime(text)) {
    return instant;
  }
  const auto words = tellingWords(wordsIn(text));
  if (words.empty()) {
    return std::nullopt;
  }
  if (const auto span = words.size() == 1 ? spanWithinADay(words.front()) : std::nullopt) {
    return asOf + *span;
  }
  const auto moment = localMoment(words, localTimeOf(asOf), unsaid);
  return moment ? std::optional{instantOfLocalTime(*moment)} : std::nullopt;
}

} // namespace orvan
