#pragma once

#include <optional>
#include <string>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/session.h"

namespace orvan {

/// What a decision is about, before it is taken.
struct Proposal {
  /// How the item relates to what the user saw of the person.
  enum class Sight {
    /// The user named the item itself.
    named,
    /// It is the reason that was shown last.
    shown,
    /// Another reason was shown last.
    otherShown,
    neverShown,
  };

  AttentionCatchUpItem item;
  AttentionItemAction action;
  Sight sight;
  /// The follow-up that the item is of.
  std::optional<std::string> followUpID = {};
};

/// What holds after a decision.
struct Decision {
  AttentionItemDispositionRecord record;
  /// False when an earlier decision is final and stayed as it was.
  bool isAsAsked;
};

/// The decision that the user asks for, on what itemCalled() finds at `asOf`. Changes nothing.
///
/// Throws Error with SessionError::snoozeEndPast, and what itemCalled() and the session throw.
Proposal propose(Session& session, const std::string& item, const AttentionItemAction& action, Instant asOf);

/// Does as proposed, and writes down that the user did; both are on disk afterwards. An item that was proposed some
/// time ago may not stand any more: propose by its key again first. With a follow-up's item the follow-up is completed
/// when it is resolved, and cancelled when it is dismissed; its reminder is the caller's to withdraw. Throws what the
/// session throws; the store is as it was then.
Decision decide(Session& session, const Proposal& proposal, Instant asOf);

} // namespace orvan
