#pragma once

#include <optional>
#include <string>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/about.h"
#include "application/session/list_order.h"
#include "application/session/listed_follow_up.h"
#include "application/session/session.h"

namespace orvan {

/// Why a projected person is not on the list.
enum class NotShownReason {
  /// Nothing waits, nothing is open, no meeting is near, and contact is as it was.
  nothingToTell,
  /// There could have been something; a closer look found nothing.
  noEvidence,
  noValidReason,
  /// There is a reason, and a name of blanks alone.
  noName,
  noItemKey,
  snoozed,
  dismissed,
  resolved,
  beyondTheCap,
  hidden,
};

struct NotShown {
  std::string personKey;
  std::string displayName;
  NotShownReason reason;
  /// The key of the item that a disposition hides.
  std::optional<std::string> itemKey;
  /// When a snooze ends.
  std::optional<Instant> until;
  /// What tells the person from others of the name.
  std::optional<std::string> address = std::nullopt;
};

/// One person on the list. A follow-up that is due comes before any other reason.
struct CatchUpRow {
  AttentionCatchUpItem item;
  ListPlace place;
  About about = {};
  /// One of their addresses, when somebody else whom the user deals with goes by the same name.
  std::optional<std::string> address = {};
  /// The follow-up that the row stands for, when it is one; the item is its item then.
  std::optional<ListedFollowUp> followUp = {};
  /// What the row does not stand for, and would without that follow-up: the person's further follow-ups that are due,
  /// and the reason that they would be on the list for otherwise.
  std::vector<ListedFollowUp> furtherFollowUps = {};
  std::optional<AttentionWhyNowItem> otherReason = {};
};

/// The list at one moment, and on demand everyone who is not on it.
struct CatchUpList {
  /// The most worthwhile first; what is older comes last.
  std::vector<CatchUpRow> rows;
  /// How many of the rows, from the last, are older.
  std::size_t older = 0;
  /// How many people who can have a reason were not looked at, because the session's cap leaves them out.
  std::size_t notLookedAt = 0;
  std::vector<NotShown> notShown;
};

/// Whether a list also says why others are not on it.
enum class Explanation { none, everyone };

/// Reads the list as it stands at `asOf`. Blocks, on the session's thread; throws what the session throws.
CatchUpList makeCatchUpList(Session& session, Instant asOf, Explanation explanation);

/// What a list of `asOf` rests on: the bundle without open matters that were noticed only after that moment, which a
/// compiler does not leave out.
AttentionEvidenceBundle asKnownAt(Instant asOf, const AttentionEvidenceBundle& bundle);

/// The person's item as it would be without any disposition; nothing when there is no reason to show one.
std::optional<AttentionCatchUpItem> itemOf(const ProjectedPerson& person, const AttentionEvidenceBundle& bundle,
                                           Instant asOf);

} // namespace orvan
