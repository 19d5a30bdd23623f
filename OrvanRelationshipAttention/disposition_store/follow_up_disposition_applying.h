#pragma once

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"

namespace orvan {

/// Where follow-ups record what the user decided about their items. AttentionDispositionStore is the one that keeps it.
class FollowUpDispositionApplying {
 public:
  virtual ~FollowUpDispositionApplying() = default;

  /// Does `action` to `item` at `asOf` and gives the record that holds afterwards. When it throws, nothing was
  /// recorded. May be awaited on any executor.
  virtual Task<AttentionItemDispositionRecord> apply(AttentionCatchUpItem item, AttentionItemAction action,
                                                     Instant asOf) = 0;
};

} // namespace orvan
