#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "OrvanStore/connection.h"

/// What a reminder says.
namespace orvan::internal {

/// What the user said about a captured object, from the JSON object that the store keeps of it; nothing when they said
/// nothing. Throws when it is not such an object.
std::optional<std::string> userFollowUpOf(std::string_view userContext);

/// A reminder's text from what the user said: its words with single blanks between them, at most 120 characters as
/// people count them, beginning with a capital when the first word is one in lowercase letters throughout. Empty when
/// there are no words.
std::string reminderText(std::string_view userFollowUp);

/// The text of a reminder about a source object, which is FollowUpScheduler::notificationTitle when nothing better is
/// known. Throws StoreError, or what userFollowUpOf() throws.
std::string notificationSubject(Connection& connection, std::string_view sourceObjectID);

} // namespace orvan::internal
