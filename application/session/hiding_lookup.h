#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/corrections/hiding.h"
#include "application/session/session.h"
#include "application/session/session_error.h"

namespace orvan {

/// Thrown with SessionError::severalMeant.
class SeveralMeant final : public Error {
 public:
  explicit SeveralMeant(std::vector<std::string> options)
      : Error(SessionError::severalMeant, "looking for what is meant"), options_(std::move(options)) {}

  /// Words of which each means one of them. They may rest on the user's data: for the user's eyes, not for a log.
  const std::vector<std::string>& options() const noexcept { return options_; }

 private:
  std::vector<std::string> options_;
};

/// What the user wants hidden.
struct HidingTarget {
  HiddenScope scope;
  std::string targetID;
  /// A person's name, a subject, or the kind of an account; empty when there is none.
  std::string name;
  /// The person whom it concerns.
  std::optional<std::string> personID;
};

/// What the user means by `text`: an item's key, which stands for the conversation that the item is about at `asOf`; an
/// account's id, its kind ("mail"), or the path of a source that has it; or a person.
///
/// Throws Error with SessionError::conversationUnknown, personUnknown or personAmbiguous, a SeveralMeant, and what
/// itemCalled() and the session throw.
HidingTarget hidingTargetCalled(const std::string& text, Session& session, Instant asOf);

/// What the user means among what is hidden: by its key, by what hides it, or by its name. Throws Error with
/// SessionError::nothingHidden, or a SeveralMeant, and what the session throws.
HiddenThing hiddenThingCalled(const std::string& text, Session& session);

} // namespace orvan
