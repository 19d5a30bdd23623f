#pragma once

#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

/// A question put to the user in a mail of their own thread.
struct AskedQuestion {
  std::string_view interactionID;
  std::string_view threadID;
  std::string_view sourceIdentityID;
  std::string_view askedAt;
  std::string_view question;
};

/// Keeps a question until it is known to be answered. Within the caller's transaction.
void noteQuestion(const AskedQuestion& asked, Connection& connection);

/// Weighs every question that is kept, within the caller's transaction. One that the user answered by a later mail of
/// the thread is forgotten, and its open loop set to "done". One that still waits becomes a claim with evidence and an
/// open loop, once; only in a thread between the user and one other person in which the user wrote before, because what
/// strangers ask is no commitment. A loop that the user closed stays closed.
void settleQuestions(std::string_view now, Connection& connection);

} // namespace orvan
