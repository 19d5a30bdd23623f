#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanStore/connection.h"

namespace orvan {

enum class FollowUpState { scheduled, completed, cancelled };

/// The case's name, as the store has it.
std::string_view caseName(FollowUpState state) noexcept;

/// A follow-up as a list shows it.
struct ListedFollowUp {
  std::string id;
  std::string personKey;
  std::string displayName;
  Instant dueAt;
  FollowUpState state;
  std::optional<Instant> completedAt;
  /// What the user said, if anything. It may hold any character.
  std::optional<std::string> said;
  /// The mail or meeting it is about.
  std::optional<std::string> interactionID;
  /// As what it surfaces in the catch-up list, with the person's name; nothing for one that cannot.
  std::optional<AttentionCatchUpItem> item;

  /// What the user calls it by where its whole id is too long: the first letters of what is its own in that.
  std::string shortID() const;
};

// All of these run within the caller's read and throw StoreError. What the store holds of a follow-up that cannot be
// read is left out. The order is that of the due times.

/// Everybody's; only the scheduled ones, or all there are.
enum class FollowUpChoice { scheduled, all };
std::vector<ListedFollowUp> followUps(FollowUpChoice choice, Connection& connection);

/// The same of one person.
std::vector<ListedFollowUp> followUpsOf(std::string_view personKey, FollowUpChoice choice, Connection& connection);

/// What is due at `asOf` and may be shown: neither the person, the conversation nor its source is hidden or deleted.
/// What was decided about their items is not looked at.
std::vector<ListedFollowUp> dueFollowUps(Instant asOf, Connection& connection);
std::vector<ListedFollowUp> dueFollowUpsOf(std::string_view personKey, Instant asOf, Connection& connection);

/// Scheduled ones that may not be shown.
std::vector<ListedFollowUp> hiddenFollowUps(Connection& connection);

/// Nothing when there is none of that id.
std::optional<ListedFollowUp> followUpWithID(std::string_view id, Connection& connection);

} // namespace orvan
