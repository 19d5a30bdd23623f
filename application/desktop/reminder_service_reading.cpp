#include "application/desktop/reminder_service_reading.h"

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/work_executor.h"
#include "application/reminder_service/running_service.h"

namespace orvan {

ReminderServiceReading readReminderService(const SessionSettings& settings) {
  auto state = AgentControl(patienceWithService).state();
  if (state.file != AgentFile::open) {
    throw Error(state.file == AgentFile::locked ? AgentControlError::locked : AgentControlError::unusable,
                "asking for the reminders");
  }
  const auto center = AgentNotificationCenter::make(centerOptionsFor(settings));
  const auto status = waitFor(sharedWorkExecutor(), center->notificationSettings()).authorizationStatus();
  const auto countSet = waitFor(sharedWorkExecutor(), center->pendingNotificationRequests()).size();
  const bool isOurs = keepsStore(state, settings);
  return {std::move(state), status, countSet, isOurs};
}

} // namespace orvan
