#pragma once

#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/uuid.h"
#include "OrvanSpineCore/effect_reason_token.h"
#include "OrvanSpineCore/persisted_follow_up.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// What the action pipeline does with follow-ups. FollowUpScheduler is the implementation.
///
/// The first group addresses the one follow-up of a source object and a person, the second a follow-up by its id, of
/// which a pair may have several.
///
/// Operations that take a connection run on the caller's thread within the caller's transaction, which they neither
/// open nor end. Their store errors pass through unchanged, and the caller's transaction then decides about the
/// statements before. They give the row as it was before, or nothing when there was nothing to do.
///
/// Asynchronous operations never run inside a transaction of the caller and never throw: without a token they
/// succeeded.
class FollowUpEffecting {
 public:
  virtual ~FollowUpEffecting() = default;

  /// Whether a follow-up with this title and due time may be made at `now`.
  virtual std::optional<EffectReasonToken> refusal(const std::string& title, Instant dueAt, Instant now) const = 0;
  /// Schedules the pair's follow-up, which gets the operation's id when there is none yet.
  virtual std::optional<PersistedFollowUp> upsert(Connection& connection, const std::string& sourceObjectID,
                                                  const std::string& personID, Instant dueAt, const Uuid& operationID,
                                                  Instant now) const = 0;
  /// The scheduled follow-ups about a source object, ordered by person.
  virtual std::vector<PersistedFollowUp> rows(Connection& connection, const std::string& sourceObjectID) const = 0;
  virtual std::optional<PersistedFollowUp> complete(Connection& connection, const std::string& sourceObjectID,
                                                    const std::string& personID, Instant now) const = 0;
  /// Puts the pair's follow-up back to `prior`; without one, to not having been made.
  virtual void restore(Connection& connection, const std::string& sourceObjectID, const std::string& personID,
                       const std::optional<PersistedFollowUp>& prior) const = 0;
  /// Writes the attention candidates of a person's scheduled follow-ups anew.
  virtual void reprojectCandidates(Connection& connection, const std::string& personID) const = 0;
  virtual Task<std::optional<EffectReasonToken>> registerReminder(std::string sourceObjectID, std::string personID,
                                                                  std::string title, Instant dueAt) const = 0;
  virtual Task<void> cancelReminder(std::string sourceObjectID, std::string personID) const = 0;
  /// Records that the user settled the matter; the follow-up's row stays as it is.
  virtual Task<std::optional<EffectReasonToken>> resolveAttention(std::string sourceObjectID, std::string personID,
                                                                  Instant now) const = 0;
  /// Reads on the calling thread, in a transaction of its own. Throws StoreError.
  virtual std::optional<PersistedFollowUp> followUp(const std::string& sourceObjectID,
                                                    const std::string& personID) const = 0;

  /// Throws, and writes nothing, when the id belongs to another source object or person.
  virtual std::optional<PersistedFollowUp> upsert(Connection& connection, const std::string& followUpID,
                                                  const std::string& sourceObjectID, const std::string& personID,
                                                  Instant dueAt, const Uuid& operationID, Instant now) const = 0;
  virtual std::optional<PersistedFollowUp> complete(Connection& connection, const std::string& followUpID,
                                                    Instant now) const = 0;
  virtual void restore(Connection& connection, const std::string& followUpID,
                       const std::optional<PersistedFollowUp>& prior) const = 0;
  /// Schedules a completed follow-up again; false when it is not completed.
  virtual bool reopen(Connection& connection, const std::string& followUpID) const = 0;
  virtual std::optional<PersistedFollowUp> cancel(Connection& connection, const std::string& followUpID) const = 0;
  virtual Task<std::optional<EffectReasonToken>> registerReminder(std::string followUpID, std::string title,
                                                                  Instant dueAt) const = 0;
  virtual Task<void> cancelReminder(std::string followUpID) const = 0;
  virtual Task<std::optional<EffectReasonToken>> resolveAttention(std::string followUpID, Instant now) const = 0;
  /// Reads on the calling thread, in a transaction of its own. Throws StoreError.
  virtual std::optional<PersistedFollowUp> followUp(const std::string& id) const = 0;
  /// Whether a follow-up of this pair may be written under this id.
  virtual std::optional<EffectReasonToken> refusal(Connection& connection, const std::string& followUpID,
                                                   const std::string& sourceObjectID,
                                                   const std::string& personID) const = 0;
};

} // namespace orvan
