#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"

namespace orvan {

/// Builds the visible list, and tells whether a row of it still stands. Keeps nothing and never fails; may be called
/// from any thread, but not while another thread changes the environment, from which dates take locale and time zone.
class AttentionCatchUpSelector {
 public:
  AttentionCatchUpSelector() = delete;

  /// One item for each person who has a reason that is active at `asOf`, in the order of `people`, neither sorted nor
  /// capped. Everyone else is passed over: people with an unusable key, a blank name, a bundle of someone else, no
  /// reason, or whose one reason is hidden, whatever other evidence there is. A person listed twice gets one item.
  ///
  /// Of several records with one key the most final counts: resolved, dismissed, snoozed, active; of equals, the first.
  static std::vector<AttentionCatchUpItem> select(std::span<const AttentionCatchUpPerson> people,
                                                  std::span<const AttentionItemDispositionRecord> dispositions,
                                                  Instant asOf);

  /// Whether a row with this key, person and references (as its requests carry them) is still the one that `bundle`
  /// gives the person. Dispositions play no part.
  static bool revalidate(std::string_view itemKey, std::string_view personKey,
                         std::span<const AttentionWhyNowEvidenceReference> evidenceReferences,
                         const AttentionEvidenceBundle& bundle);
};

} // namespace orvan
