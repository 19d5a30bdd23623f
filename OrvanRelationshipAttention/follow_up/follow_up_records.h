#pragma once

#include <optional>
#include <string>

#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/uuid.h"
#include "OrvanSpineCore/persisted_follow_up.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// The rows of follow-ups by their ids, with the open loops and candidates that mirror them: what FollowUpScheduler
/// does with them too, for programs that have a connection and see to the reminders elsewhere.
///
/// Everything runs on the caller's thread within the caller's transaction and throws StoreError.
class FollowUpRecords {
 public:
  FollowUpRecords() = delete;

  static std::optional<PersistedFollowUp> load(Connection& connection, const std::string& followUpID);

  /// Schedules the follow-up, making it where there is none, and gives the row as it was before. Throws
  /// FollowUpScopeMismatch before anything is written when the id belongs to another source object or person.
  static std::optional<PersistedFollowUp> upsert(Connection& connection, const std::string& followUpID,
                                                 const std::string& sourceObjectID, const std::string& personID,
                                                 Instant dueAt, const Uuid& operationID, Instant now);

  // These two give the row as it was before, or nothing when it was not scheduled and stays as it is.

  static std::optional<PersistedFollowUp> complete(Connection& connection, const std::string& followUpID, Instant now);
  static std::optional<PersistedFollowUp> cancel(Connection& connection, const std::string& followUpID);

  /// Schedules a completed follow-up again; false when it is not completed.
  static bool reopen(Connection& connection, const std::string& followUpID);
};

} // namespace orvan
