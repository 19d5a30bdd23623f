#pragma once

#include <optional>
#include <string>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/session.h"

namespace orvan {

/// Why a projected person is not on the list.
enum class NotShownReason {
  noEvidence,
  noValidReason,
  /// There is a reason, and a name of blanks alone.
  noName,
  noItemKey,
  snoozed,
  dismissed,
  resolved,
  beyondTheCap,
};

struct NotShown {
  std::string personKey;
  std::string displayName;
  NotShownReason reason;
  /// The key of the item that a disposition hides.
  std::optional<std::string> itemKey;
  /// When a snooze ends.
  std::optional<Instant> until;
};

/// The list at one moment, and on demand everyone who is not on it.
struct CatchUpList {
  std::vector<AttentionCatchUpItem> items;
  std::vector<NotShown> notShown;
  /// How many people were not looked at, because the session's cap leaves them out.
  std::size_t beyondTheCap = 0;
};

/// Whether a list also says why others are not on it, which costs a look at each of them.
enum class Explanation { none, everyone };

/// Reads the list as it stands at `asOf`. Blocks, on the session's thread; throws what the session throws.
CatchUpList makeCatchUpList(Session& session, Instant asOf, Explanation explanation);

/// The person's item as it would be without any disposition; nothing when there is no reason to show one.
std::optional<AttentionCatchUpItem> itemOf(const ProjectedPerson& person, const AttentionEvidenceBundle& bundle,
                                           Instant asOf);

} // namespace orvan
