#pragma once

#include <string>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/session.h"
#include "application/session/session_error.h"

namespace orvan {

/// Thrown with SessionError::reasonChanged: the user named a reason that no longer stands.
class ReasonChanged final : public Error {
 public:
  explicit ReasonChanged(AttentionWhyNowItem current)
      : Error(SessionError::reasonChanged, "looking for an item"), current_(std::move(current)) {}

  /// The person's reason now. It rests on the user's data: for the user's eyes, not for a log.
  const AttentionWhyNowItem& current() const noexcept { return current_; }

 private:
  AttentionWhyNowItem current_;
};

/// An item that stands, whatever was decided about it, and the evidence it was chosen from.
struct FoundItem {
  AttentionCatchUpItem item;
  AttentionEvidenceBundle bundle;
};

/// Whether a text has the form of an item's key.
bool isItemKey(const std::string& text);

/// What the user names by `text`: an item's key, or a person's key, name or address, which stand for the item of that
/// person at `asOf`.
///
/// Throws Error with SessionError::personUnknown, personAmbiguous, personHidden or noReasonNow, or a ReasonChanged, and
/// what the session throws.
FoundItem itemCalled(const std::string& text, Session& session, Instant asOf);

} // namespace orvan
