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

// Both block, on any thread, and throw Error with an AgentControlError.

ReminderServiceReading readReminderService(const SessionSettings& settings);

/// Starts the service beside this program, or where PATH has it, and waits until it can be asked.
void startReminderService(const SessionSettings& settings);

} // namespace orvan
