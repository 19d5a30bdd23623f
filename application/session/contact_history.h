#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/session/session.h"

namespace orvan {

// Both are read from the counts of contact, a statement or two for each, whatever the length of anybody's history. What
// counts there is in docs/decisions/contact-week-by-week.md. Weeks are those of contactWeekOf(). A mail to two
// addresses of one person counts twice, as in the list of people.

/// Two years, and the week that has not ended.
inline constexpr std::size_t weeksOfHistory = 105;

/// Whole weeks in a row without a mail either way or a meeting.
struct QuietStretch {
  /// The first of them.
  std::int64_t firstWeek;
  std::int64_t weeks;

  bool operator==(const QuietStretch&) const = default;
};

/// How contact with one person went in the two years until a moment.
struct ContactHistory {
  /// The oldest week told of.
  std::int64_t firstWeek = 0;
  /// For each of weeksOfHistory weeks, the oldest first, how many mails went to the person, how many came from them,
  /// and how often the user and they met.
  std::vector<std::int64_t> mailsTo;
  std::vector<std::int64_t> mailsFrom;
  std::vector<std::int64_t> meetings;
  /// The latest of each until the moment, however long ago.
  std::optional<Instant> lastMailToAt;
  std::optional<Instant> lastMailFromAt;
  std::optional<Instant> lastMetAt;
  /// The longest of the two years, since there is contact at all; of several, the latest.
  std::optional<QuietStretch> longestQuiet;
  /// The one that goes on; nothing when there was contact this week or in the last.
  std::optional<QuietStretch> currentQuiet;

  bool operator==(const ContactHistory&) const = default;
};

/// All zero and absent for somebody whom the user never dealt with, or an unknown key. Costs a few pages for each of
/// the person's addresses; a look at the person's interactions is taken only where they met, or where the latest counts
/// are of a time after `asOf`. Throws StoreError.
ContactHistory contactHistory(Session& session, const std::string& personKey, Instant asOf);
/// The same within the caller's read.
ContactHistory contactHistory(const std::string& personKey, Instant asOf, Connection& connection);

} // namespace orvan
