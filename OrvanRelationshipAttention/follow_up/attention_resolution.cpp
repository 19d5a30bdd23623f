#include "OrvanRelationshipAttention/follow_up/internal/attention_resolution.h"

#include <expected>

#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"

namespace orvan::internal {
namespace {

using Token = std::optional<EffectReasonToken>;

/// The item to resolve, or why there is none.
using ItemOrToken = std::expected<AttentionCatchUpItem, EffectReasonToken>;

ItemOrToken itemOf(Connection& connection, const std::string& personID, const std::string& openLoopID) {
  const auto detectedAt = openLoopDetectedAt(connection, openLoopID);
  auto item =
      detectedAt.has_value() ? FollowUpScheduler::attentionItem(personID, openLoopID, *detectedAt) : std::nullopt;
  if (!item.has_value()) {
    return std::unexpected{EffectReasonToken::followUpNotLive};
  }
  return *std::move(item);
}

/// Runs `body` in one read; a store that cannot be read is a token too.
template <typename Body>
ItemOrToken readItem(const Parts& parts, Body body) {
  try {
    return parts->pool->read(body);
  } catch (...) {
    return std::unexpected{EffectReasonToken::storeUnreadable};
  }
}

Task<Token> resolve(Parts parts, ItemOrToken item, Instant now) {
  if (!item.has_value()) {
    co_return item.error();
  }
  try {
    co_await parts->dispositions->apply(*std::move(item), AttentionItemAction::resolve(), now);
    co_return std::nullopt;
  } catch (...) {
    co_return EffectReasonToken::attentionNotResolved;
  }
}

} // namespace

Task<Token> resolvePairAttention(Parts parts, std::string sourceObjectID, std::string personID, Instant now) {
  auto item = readItem(parts, [&](Connection& connection) {
    return itemOf(connection, personID, followUpOpenLoopID(sourceObjectID, personID));
  });
  co_return co_await resolve(std::move(parts), std::move(item), now);
}

Task<Token> resolveIdentifiedAttention(Parts parts, std::string followUpID, Instant now) {
  auto item = readItem(parts, [&](Connection& connection) -> ItemOrToken {
    const auto row = loadFollowUp(connection, followUpID);
    if (!row.has_value()) {
      return std::unexpected{EffectReasonToken::followUpNotLive};
    }
    return itemOf(connection, row->personID(), storedOpenLoopID(connection, followUpID));
  });
  co_return co_await resolve(std::move(parts), std::move(item), now);
}

} // namespace orvan::internal
