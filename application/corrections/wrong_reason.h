#pragma once

#include <string>

#include "OrvanPlatform/instant.h"
#include "application/corrections/change.h"

namespace orvan {

// The user says that a reason is none. Both run within the caller's transaction and throw StoreError.

/// What was taken for a question is none: its open loop is dismissed, and no import opens it again.
void dropQuestion(const std::string& openLoopID, Instant now, ChangeRecorder& recorder, Connection& connection);

/// The conversation is not waiting, though its latest mail came in: that mail is kept from being shown, and with it the
/// conversation does not wait until another mail comes.
void settleConversation(const std::string& personID, const std::string& interactionID, Instant now,
                        ChangeRecorder& recorder, Connection& connection);

} // namespace orvan
