#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan {

std::string_view caseName(AttentionWhyNowItem::Kind kind) noexcept {
  switch (kind) {
    case AttentionWhyNowItem::Kind::openThread:
      return "openThread";
    case AttentionWhyNowItem::Kind::changedContext:
      return "changedContext";
    case AttentionWhyNowItem::Kind::commitment:
      return "commitment";
    case AttentionWhyNowItem::Kind::upcomingInteraction:
      return "upcomingInteraction";
  }
  return {};
}

} // namespace orvan
