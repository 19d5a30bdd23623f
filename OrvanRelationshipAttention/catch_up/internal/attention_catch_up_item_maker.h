#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"

/// What the folders of this library share about catch-up items. Embedding code gets items from the
/// selector. Everything here is pure and may be called from any thread.
namespace orvan::internal {

class AttentionCatchUpItemMaker {
 public:
  AttentionCatchUpItemMaker() = delete;

  /// The key of a person's item for `whyNow`; absent when the person key is unusable, the reason is not valid, or it
  /// rests on no row.
  ///
  /// The key lists the person key, the kind, the defining timestamp and the references in their stored order, each
  /// behind its length in bytes: different lists never give the same key.
  static std::optional<std::string> itemKey(std::string_view personKey, const AttentionWhyNowItem& whyNow);

  /// See AttentionCatchUpItem::itemKeyFor().
  static std::optional<std::string> itemKeyFor(std::string_view otherPersonKey, std::string_view itemKey,
                                               std::string_view personKey);

  /// The item, with `displayName` as it is; absent when there is no key.
  static std::optional<AttentionCatchUpItem> make(std::string personKey, std::string displayName,
                                                  AttentionWhyNowItem whyNow);

  /// The same for a key that itemKey() gave.
  static AttentionCatchUpItem make(std::string itemKey, std::string personKey, std::string displayName,
                                   AttentionWhyNowItem whyNow);
};

/// `state` at `asOf`: a snooze that is over is active, everything else stays.
AttentionItemState normalized(const AttentionItemState& state, Instant asOf) noexcept;

/// The list for people whose items' states `recordState` knows by item key; it is asked at most once for each person.
std::vector<AttentionCatchUpItem> selectCatchUp(std::span<const AttentionCatchUpPerson> people,
                                                const std::function<AttentionItemState(std::string_view)>& recordState);

} // namespace orvan::internal
