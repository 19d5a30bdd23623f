#pragma once

#include <string>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/session.h"
#include "application/session/session_error.h"

namespace orvan {

/// What holds after a decision.
struct Decision {
  AttentionItemDispositionRecord record;
  /// False when an earlier decision is final and stayed as it was.
  bool isAsAsked;
};

/// Thrown with SessionError::reasonChanged: the user decided about a reason that no longer stands.
class ReasonChanged final : public Error {
 public:
  explicit ReasonChanged(AttentionWhyNowItem current)
      : Error(SessionError::reasonChanged, "deciding about an item"), current_(std::move(current)) {}

  /// The person's reason now. It rests on the user's data: for the user's eyes, not for a log.
  const AttentionWhyNowItem& current() const noexcept { return current_; }

 private:
  AttentionWhyNowItem current_;
};

/// Does `action` at `asOf` to what `item` names: an item's key, or a person's key, name or address, which stand for the
/// item of that person now. It is on disk afterwards.
///
/// Throws Error with SessionError::snoozeEndPast, personUnknown, personAmbiguous or noReasonNow, or a ReasonChanged,
/// and what the session throws; the store is as it was then.
Decision decide(Session& session, const std::string& item, const AttentionItemAction& action, Instant asOf);

} // namespace orvan
