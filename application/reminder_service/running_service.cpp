#include "application/reminder_service/running_service.h"

#include <boost/asio/io_context.hpp>
#include <filesystem>
#include <string>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/error.h"
#include "application/follow_ups/notification_application.h"
#include "application/process/program_start.h"

namespace orvan {
namespace {

/// Waits until the service is on the bus; whether it is, before patience ends.
bool waitForService() {
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

bool start(const std::filesystem::path& agent, const SessionSettings& settings) {
  const auto absolute = [](const std::filesystem::path& path) { return std::filesystem::absolute(path).native(); };
  return startByItself(agent, {"--store", absolute(settings.store), "--key-file", absolute(settings.keyFile)}, {});
}

AgentState stateOfService(const SessionSettings& settings) {
  try {
    return AgentControl(patienceWithService).state();
  } catch (const Error& error) {
    const auto program = programCalled("orvan-agent");
    if (error.code() != AgentControlError::noAgent || !program || !start(*program, settings) || !waitForService()) {
      throw;
    }
  }
  return AgentControl(patienceWithService).state();
}

} // namespace

AgentCenterOptions centerOptionsFor(const SessionSettings& settings) {
  return {.application = notificationApplicationOf(settings.store),
          .displayName = std::string{notificationDisplayName},
          .callTimeout = patienceWithService};
}

AgentState usableService(const SessionSettings& settings) {
  auto state = stateOfService(settings);
  if (state.file != AgentFile::open) {
    throw Error(state.file == AgentFile::locked ? AgentControlError::locked : AgentControlError::unusable,
                "asking for the reminders");
  }
  return state;
}

bool keepsStore(const AgentState& service, const SessionSettings& settings) {
  return !service.store.empty() &&
         notificationApplicationOf(service.store) == notificationApplicationOf(settings.store);
}

} // namespace orvan
