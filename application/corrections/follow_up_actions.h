#pragma once

#include <optional>
#include <string>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/corrections/change.h"

namespace orvan {

// What the user does with follow-ups. Each runs within the caller's write transaction and throws StoreError. Reminders
// are set right after it, by whoever has a notification centre.

/// A follow-up before it is made.
struct NewFollowUp {
  std::string personID;
  Instant dueAt;
  /// What its reminder says; the first line that the user sees of it.
  std::string text;
  /// The mail or meeting that it is about; nothing for one about the person alone.
  std::optional<std::string> interactionID;
};

/// Makes it, with an object of its own that holds what the user said, and writes that down in the journal. Gives its
/// id.
std::string addFollowUp(const NewFollowUp& followUp, Instant now, Connection& connection);

// These are written down in the journal, too, and give whether there was something to do: a follow-up that is not
// scheduled (for reopening: not completed) stays as it is.

/// Its matter counts as settled then.
bool completeFollowUp(const std::string& followUpID, Instant now, Connection& connection);
bool cancelFollowUp(const std::string& followUpID, Instant now, Connection& connection);
/// Its matter is open again.
bool reopenFollowUp(const std::string& followUpID, Instant now, Connection& connection);

/// Completes or cancels the follow-up as part of an action that is written down as a whole, such as a decision about
/// its item. Leaves what was decided about the item alone.
bool completeFollowUp(const std::string& followUpID, Instant now, ChangeRecorder& recorder, Connection& connection);
bool cancelFollowUp(const std::string& followUpID, ChangeRecorder& recorder, Connection& connection);

} // namespace orvan
