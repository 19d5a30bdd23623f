#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/session/session.h"

namespace orvan {

/// How it stands between the user and a person, by the contact of two years. See
/// docs/decisions/contact-week-by-week.md.
enum class ContactStanding {
  /// There was lasting contact, and it has been quiet for longer than it ever was, and much longer than it usually was.
  driftedAway,
  /// There is contact as there was before.
  inTouch,
  /// Too little contact to tell.
  acquainted,
};

/// Who has the other's mail to answer.
enum class WaitingSide { nobody, user, them };

/// The names of the cases.
std::string_view caseName(ContactStanding standing) noexcept;
std::string_view caseName(WaitingSide side) noexcept;

/// What an overview tells of one person.
struct ContactSummary {
  std::string personKey;
  std::string displayName;
  /// When the latest mail or meeting was.
  std::optional<Instant> lastContactAt;
  /// Mails either way and meetings in the last 52 weeks and the 52 before. Weeks are told whole, this one too.
  std::int64_t exchangedLastYear = 0;
  std::int64_t exchangedYearBefore = 0;
  ContactStanding standing = ContactStanding::acquainted;
  WaitingSide waiting = WaitingSide::nobody;
  /// When the mail was that waits.
  std::optional<Instant> waitingSince;

  bool operator==(const ContactSummary&) const = default;
};

/// Everybody whom the user deals with, in key order, as of a moment. Whoever is hidden is left out, and so are lists,
/// offices and machines. Costs a row for each person and each of their weeks within two years, whatever the length of
/// anybody's history; for those alone whom the user met since the last mail a look at their interactions.
///
/// For a moment before somebody's newest mail the last contact is told to the week, and which mails waited then is
/// known only of those that wait still. Throws StoreError.
std::vector<ContactSummary> contactOverview(Session& session, Instant asOf);
/// The same within the caller's read.
std::vector<ContactSummary> contactOverview(Instant asOf, Connection& connection);

/// The parts of an overview. Somebody may be in several, or in none.
struct ContactGroups {
  /// Those first with whom most was exchanged.
  std::vector<ContactSummary> driftedAway;
  std::vector<ContactSummary> inTouch;
  /// The newest first of what waits.
  std::vector<ContactSummary> waitingForUser;
  std::vector<ContactSummary> waitingForThem;
};

ContactGroups contactGroups(const std::vector<ContactSummary>& overview);

} // namespace orvan
