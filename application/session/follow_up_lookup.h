#pragma once

#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/session/listed_follow_up.h"
#include "application/session/session.h"
#include "application/session/session_error.h"

namespace orvan {

/// Thrown with SessionError::followUpAmbiguous: what the user wrote names several follow-ups. What the error says of
/// itself holds nothing of them.
class SeveralFollowUps final : public Error {
 public:
  explicit SeveralFollowUps(std::vector<ListedFollowUp> followUps)
      : Error(SessionError::followUpAmbiguous, "looking for a follow-up"), followUps_(std::move(followUps)) {}

  const std::vector<ListedFollowUp>& followUps() const noexcept { return followUps_; }

 private:
  std::vector<ListedFollowUp> followUps_;
};

/// The follow-up of that state that the user means by `text`: its id, the beginning of what is its own in that, its
/// item's key, or a person who has only one.
///
/// Throws Error with SessionError::followUpUnknown, or followUpElsewhere for one that is in another state; a
/// SeveralFollowUps; and what the session throws.
ListedFollowUp followUpCalled(const std::string& text, FollowUpState state, Session& session);

} // namespace orvan
