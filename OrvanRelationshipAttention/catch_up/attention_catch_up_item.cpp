#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"

#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"

namespace orvan {

std::string_view caseName(AttentionRouteKind kind) noexcept {
  switch (kind) {
    case AttentionRouteKind::personFocus:
      return "personFocus";
    case AttentionRouteKind::personPrep:
      return "personPrep";
  }
  return {};
}

std::optional<std::string> AttentionCatchUpItem::itemKeyFor(std::string_view otherPersonKey, std::string_view itemKey,
                                                            std::string_view personKey) {
  return internal::AttentionCatchUpItemMaker::itemKeyFor(otherPersonKey, itemKey, personKey);
}

AttentionItemActionRequest AttentionCatchUpItem::actionRequest(const AttentionItemAction& action) const {
  return {itemKey_, personKey_, whyNow_.evidenceReferences(), action};
}

} // namespace orvan
