#pragma once

#include <string>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/session.h"

namespace orvan {

/// What holds after a decision.
struct Decision {
  AttentionItemDispositionRecord record;
  /// False when an earlier decision is final and stayed as it was.
  bool isAsAsked;
};

/// Does `action` at `asOf` to the item that itemCalled() finds. It is on disk afterwards.
///
/// Throws Error with SessionError::snoozeEndPast, and what itemCalled() and the session throw; the store is as it was
/// then.
Decision decide(Session& session, const std::string& item, const AttentionItemAction& action, Instant asOf);

} // namespace orvan
