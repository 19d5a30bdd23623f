#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "application/session/about.h"
#include "application/session/correction.h"
#include "application/session/listed_follow_up.h"
#include "application/session/session.h"

namespace orvan {

/// One mail or meeting of a conversation.
struct Exchange {
  enum class Kind { received, sent, meeting };

  std::string interactionID;
  Kind kind;
  /// As the store has it.
  std::string occurredAt;
  /// Who wrote a mail that was received: a name, or else an address.
  std::optional<std::string> from;
  /// What the person whom the item is of asked in it, in their words.
  std::optional<std::string> question = {};
};

/// The case's name.
std::string_view caseName(Exchange::Kind kind) noexcept;

/// The latest of a thread, up to a moment, and how much came before. What was deleted or is kept from being shown is
/// left out of both.
struct Conversation {
  /// In the order of their time.
  std::vector<Exchange> exchanges;
  std::int64_t earlier = 0;
};

/// An item with all that the store tells of it.
struct ItemDetails {
  AttentionCatchUpItem item;
  /// See CatchUpRow.
  std::optional<std::string> address;
  About about;
  Conversation conversation;
  /// What else there is between the user and the person.
  std::vector<Matter> others;
  /// What was decided about the person.
  std::vector<AttentionItemDispositionRecord> records;
  /// The follow-up that the item is of, and the person's others that are scheduled.
  std::optional<ListedFollowUp> followUp = {};
  std::vector<ListedFollowUp> furtherFollowUps = {};
  /// What sayWrong() would take for wrong; nothing when it would refuse.
  std::optional<WrongReason> canBeWrong = {};
};

/// The details of what itemCalled() finds, as they stand at `asOf`; of a person without a reason now, those of the
/// follow-up that comes due next. Throws what itemCalled() and the session throw.
ItemDetails itemDetails(const std::string& text, Session& session, Instant asOf);

} // namespace orvan
