#pragma once

#include <optional>
#include <string>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/about.h"
#include "application/session/listed_follow_up.h"
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

/// An item that stands, whatever was decided about it, and the evidence on its person.
struct FoundItem {
  AttentionCatchUpItem item;
  AttentionEvidenceBundle bundle;
  /// The follow-up that it is the item of; nothing when it was chosen from the evidence.
  std::optional<ListedFollowUp> followUp = {};
};

/// Whether a text has the form of an item's key.
bool isItemKey(const std::string& text);

/// What the user names by `text`: an item's key, or a person's key, name or address, which stand for the item of that
/// person at `asOf`: a follow-up that is due and about which nothing was decided, or the reason from their evidence, or
/// else any follow-up that is due. A key names a follow-up before it is due, too.
///
/// Throws Error with SessionError::personUnknown, personAmbiguous, personHidden or noReasonNow, or a ReasonChanged, and
/// what the session throws.
FoundItem itemCalled(const std::string& text, Session& session, Instant asOf);

/// The person's follow-up that is due at `asOf` and comes first on the list; nothing when none is due, or something was
/// decided about each. Throws what the session throws.
std::optional<ListedFollowUp> followUpThatStands(const std::string& personKey, Session& session, Instant asOf);

/// What the item is about. Runs within the caller's read; throws StoreError.
About aboutOf(const FoundItem& found, Connection& connection);

} // namespace orvan
