#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// What a look at the counts of contact tells of one person, without a look at their history.
struct ContactOutlook {
  std::string personKey;
  std::string displayName;
  /// How much the user and the person write to each other and meet: 0 for strangers, about 10 for someone with whom
  /// there are several mails a day. What was a month ago counts half.
  double exchange = 0;
  /// Whether the user has ever written to the person or met them.
  bool isAcquainted = false;
  /// When the latest mail came that may wait for a reply.
  std::optional<Instant> waitingSince;
  /// When the latest matter was noticed that is still open with them.
  std::optional<Instant> openSince;
  /// Whether there may be a meeting within the next two weeks.
  bool mayMeet = false;
  /// Whether contact may have resumed within the last month after a quiet stretch.
  bool mayHaveResumed = false;
  /// Whether the store has interactions with the person and no counts, as when a program other than the importers wrote
  /// them. Such a person may have any reason, and is taken for an acquaintance.
  bool isUncounted = false;
  /// Whether the user keeps the person from being shown.
  bool isHidden = false;

  bool operator==(const ContactOutlook&) const = default;

  /// Whether anything can bring the person onto a list. Those for whom it is false need not be looked at; of the others
  /// a closer look may still find nothing.
  bool canHaveReason() const noexcept {
    return !isHidden && (waitingSince || openSince || mayMeet || mayHaveResumed || isUncounted);
  }
};

/// Everybody whom StoreProjectionReader lists, with what can be told of them as of an instant, in the order in which a
/// closer look is worthwhile: matters that are open and meetings first, then by how much is exchanged and how lately;
/// strangers come later, mail that has waited for more than 90 days later still, and last come those who cannot have a
/// reason.
///
/// Costs what the counts of one year cost and a few rows for each person, whatever the length of anybody's history.
/// For a moment before the newest mail it cannot be told which mails were answered by then; whoever wrote to the user
/// within 90 days before it may then wait. Runs within the caller's read and throws StoreError.
std::vector<ContactOutlook> contactOutlooks(Instant asOf, Connection& connection);

/// How worthwhile it is to look at something that happened `age` before now, given the exchange with the person.
/// Greater is better; only the order means anything.
double worthOf(double exchange, std::chrono::duration<double> age) noexcept;

/// From this age on, mail that waits is among what is older.
inline constexpr std::int64_t olderAfterDays = 90;

} // namespace orvan
