#pragma once

#include <chrono>

#include "OrvanNotifications/agent_control.h"
#include "OrvanNotifications/agent_control_error.h"
#include "OrvanNotifications/agent_notification_center.h"
#include "application/session/session_settings.h"

namespace orvan {

/// How long a program waits for one answer of the reminder service.
inline constexpr std::chrono::seconds patienceWithService{5};

/// Who asks the reminder service for the reminders of a store.
AgentCenterOptions centerOptionsFor(const SessionSettings& settings);

/// How the reminder service is, which is started when it does not run: by the bus, or where that knows of none because
/// none was installed, from beside the running program. Blocks, for some seconds at most. Throws Error with an
/// AgentControlError when there is no service, or one that cannot keep reminders now.
AgentState usableService(const SessionSettings& settings);

/// Whether the service keeps the reminders of this store in line by itself.
bool keepsStore(const AgentState& service, const SessionSettings& settings);

} // namespace orvan
