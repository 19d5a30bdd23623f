#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/corrections/change.h"

namespace orvan {

/// What the user can keep from being shown. A mail is hidden by itself when the user says that it waits for nothing.
enum class HiddenScope { person, conversation, mail, account };

/// The name of the case.
std::string_view caseName(HiddenScope scope) noexcept;

/// Something that is hidden now.
struct HiddenThing {
  /// What the user can call it by: short, and its own.
  std::string key;
  HiddenScope scope;
  std::string targetID;
  /// A person's name, a subject, or the kind of an account; empty when there is none.
  std::string name;
  /// Whom it concerns: the person, who wrote the mail, or one of those in the conversation.
  std::optional<std::string> personID;
  std::optional<std::string> personName;
  /// As the store has it.
  std::string since;
};

// All of these run within the caller's transaction and throw StoreError.

/// Everything that is hidden, the latest first.
std::vector<HiddenThing> hiddenThings(Connection& connection);

/// Nothing when it is not hidden.
std::optional<HiddenThing> hiddenThing(HiddenScope scope, std::string_view targetID, Connection& connection);

bool isPersonHidden(std::string_view personID, Connection& connection);

/// Keeps it from being shown from now on. It must not be hidden already.
void hide(HiddenScope scope, std::string_view targetID, Instant now, ChangeRecorder& recorder, Connection& connection);

/// Shows it again.
void unhide(const HiddenThing& thing, Instant now, ChangeRecorder& recorder, Connection& connection);

} // namespace orvan
