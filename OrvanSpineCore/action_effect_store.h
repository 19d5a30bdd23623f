#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/uuid.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// What the application's actions leave in the store.
class ActionEffectStore {
 public:
  ActionEffectStore() = delete;

  /// The text that a moment is stored as: UTC, whole seconds, "Z". The same moment always gives the same text, and the
  /// texts sort as the moments do. Whole seconds, because such a text may become the defining timestamp of a reason,
  /// which has no fraction.
  static std::string stamp(Instant moment);

  /// Reads a stamp back; nothing when the text is not one.
  static std::optional<Instant> parse(std::string_view text) noexcept;

  /// Marks as met, at `at`, what the operation still owed after its commit; what it owes for an undone link stays. An
  /// operation that owes nothing is passed over. Runs in the caller's transaction.
  static void settlePostCommit(Connection& connection, const Uuid& operationID, Instant at);

  /// Marks as met, at `now`, the withdrawals owed for undone links whose notification is not among `pendingKeys`, the
  /// keys that the notification centre still holds. Runs in the caller's transaction.
  static void settleUndoneUnlinkObligations(Connection& connection, const std::unordered_set<std::string>& pendingKeys,
                                            Instant now);
};

} // namespace orvan
