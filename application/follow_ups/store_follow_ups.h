#pragma once

#include <memory>
#include <optional>
#include <string>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"
#include "application/session/session_settings.h"

namespace orvan {

/// The follow-ups of a store for a program that runs all day and must not keep it open: a change of the key and a
/// restore need it for themselves. Each call opens the store, blocks, and closes it again.
///
/// A value, used from any thread; one call at a time is enough for anybody. Calls throw what opening a session throws,
/// and StoreError.
class StoreFollowUps {
 public:
  explicit StoreFollowUps(SessionSettings settings) : settings_(std::move(settings)) {}

  /// Brings `centre` in line with the store. Nobody is asked whether reminders are allowed.
  void reconcile(std::shared_ptr<FollowUpNotificationScheduling> centre) const;

  enum class Completion {
    done,
    /// It was completed or cancelled before, or there is none of that id.
    notScheduled,
  };
  /// Completes the follow-up and settles its matter, as the user can take back. Its reminder is the caller's.
  Completion complete(const std::string& followUpID, Instant now) const;

  /// The key of the person whom a follow-up is about; nothing when there is none of that id.
  std::optional<std::string> personOf(const std::string& followUpID) const;

 private:
  SessionSettings settings_;
};

} // namespace orvan
