#include "application/desktop/reminder_service_reading.h"

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <filesystem>

#include "OrvanNotifications/agent_control.h"
#include "OrvanNotifications/agent_control_error.h"
#include "OrvanNotifications/agent_notification_center.h"
#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/work_executor.h"
#include "application/follow_ups/notification_application.h"
#include "application/process/program_start.h"

namespace orvan {
namespace {

constexpr std::chrono::seconds patienceWithService{5};
constexpr auto attemptToStart = "starting the reminder service";

/// Whether the service is on the bus before patience ends.
bool waitUntilServed() {
  boost::asio::io_context loop{1};
  bool isThere = false;
  const auto bus = BusConnection::toUserBus(loop.get_executor());
  const auto watch = bus->watchName(agent_protocol::serviceName, [&](const std::string& owner) {
    isThere = !owner.empty();
    if (isThere) {
      loop.stop();
    }
  });
  loop.run_for(patienceWithService);
  return isThere;
}

} // namespace

ReminderServiceReading readReminderService(const SessionSettings& settings) {
  auto state = AgentControl(patienceWithService).state();
  if (state.file != AgentFile::open) {
    throw Error(state.file == AgentFile::locked ? AgentControlError::locked : AgentControlError::unusable,
                "asking for the reminders");
  }
  const auto center = AgentNotificationCenter::make({.application = notificationApplicationOf(settings.store),
                                                     .displayName = std::string{notificationDisplayName},
                                                     .callTimeout = patienceWithService});
  const auto status = waitFor(sharedWorkExecutor(), center->notificationSettings()).authorizationStatus();
  const auto countSet = waitFor(sharedWorkExecutor(), center->pendingNotificationRequests()).size();
  const bool keepsStore = notificationApplicationOf(state.store) == notificationApplicationOf(settings.store);
  return {std::move(state), status, countSet, keepsStore};
}

void startReminderService(const SessionSettings& settings) {
  const auto program = programCalled("orvan-agent");
  const auto absolute = [](const std::filesystem::path& path) { return std::filesystem::absolute(path).native(); };
  const bool isStarted =
      program &&
      startByItself(*program, {"--store", absolute(settings.store), "--key-file", absolute(settings.keyFile)}, {});
  if (!isStarted || !waitUntilServed()) {
    throw Error(AgentControlError::noAgent, attemptToStart);
  }
}

} // namespace orvan
