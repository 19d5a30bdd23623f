#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"

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

AttentionItemActionRequest AttentionCatchUpItem::actionRequest(const AttentionItemAction& action) const {
  return {itemKey_, personKey_, whyNow_.evidenceReferences(), action};
}

} // namespace orvan
