#pragma once

#include <cstddef>

#include "OrvanNotifications/agent_state.h"
#include "OrvanPlatform/notification_center/notification_settings.h"
#include "application/session/session_settings.h"

namespace orvan {

/// How the reminder service is, and what it holds for a store.
struct ReminderServiceReading {
  AgentState state;
  AuthorizationStatus authorization;
  /// How many reminders of the store's are set.
  std::size_t countSet;
  /// Whether the service keeps this store's reminders in line by itself.
  bool keepsStore;
};

/// Does not start a service that does not run, other than the bus does by itself. Blocks, on any thread, and throws
/// Error with an AgentControlError.
ReminderServiceReading readReminderService(const SessionSettings& settings);

} // namespace orvan
