#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan {

/// 2026-03-05T14:07:09Z, when sample actions take place.
extern const Instant actionTime;

/// An item of the given kind whose defining event was on 2026-03-01.
AttentionCatchUpItem sampleItem(std::string itemKey, std::string personKey, AttentionWhyNowItem::Kind kind,
                                std::vector<AttentionWhyNowEvidenceReference> references);

/// Numbered items, three references each, of seven people in turn, and a numbered action for each: what one process
/// writes, another can foretell.
AttentionCatchUpItem numberedItem(int number);
AttentionItemAction numberedAction(int number);
/// The state that numberedAction leaves an untouched item in.
AttentionItemState numberedState(int number);
std::string numberedPerson(int number);
/// The item that several processes act on, for a place in their work; all are one person's.
AttentionCatchUpItem contestedItem(int place);

} // namespace orvan
