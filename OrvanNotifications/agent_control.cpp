#include "OrvanNotifications/agent_control.h"

#include <boost/asio/io_context.hpp>
#include <optional>
#include <utility>

#include "OrvanNotifications/agent_control_error.h"
#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

using namespace agent_protocol;

constexpr auto attempt = "asking the reminder service";

AgentControlError errorNamed(std::string_view name) {
  if (name == refusedError) {
    return AgentControlError::refused;
  }
  if (name == lockedError) {
    return AgentControlError::locked;
  }
  if (name == unusableError) {
    return AgentControlError::unusable;
  }
  if (name == noServiceError) {
    return AgentControlError::noNotificationService;
  }
  return name == notYoursError ? AgentControlError::notYours : AgentControlError::failed;
}

AgentControlError errorOf(const BusFailure& failure) {
  switch (failure.error()) {
    case BusError::noBus:
      return AgentControlError::noBus;
    case BusError::noService:
      return AgentControlError::noAgent;
    case BusError::timedOut:
      return AgentControlError::tooSlow;
    case BusError::disconnected:
    case BusError::serviceLeft:
      return AgentControlError::left;
    case BusError::answeredWithError:
      return errorNamed(failure.name());
    case BusError::malformed:
      break;
  }
  return AgentControlError::failed;
}

AgentFile fileNamed(std::string_view word) {
  if (word == "open") {
    return AgentFile::open;
  }
  return word == "locked" ? AgentFile::locked : AgentFile::unusable;
}

Instant instantOf(std::int64_t microseconds) {
  return Instant{Instant::duration{microseconds}};
}

void readText(AgentState& state, const std::string& key, std::string value) {
  if (key == "version") {
    state.version = std::move(value);
  } else if (key == "store") {
    state.store = std::move(value);
  } else if (key == "file") {
    state.file = fileNamed(value);
  } else if (key == "titles") {
    state.titles = value == "general" ? ReminderTitles::general : ReminderTitles::said;
  } else if (key == "service") {
    state.service = std::move(value);
  }
}

void readInstant(AgentState& state, const std::string& key, Instant value) {
  if (key == "nextDue") {
    state.nextDue = value;
  } else if (key == "lastRefresh") {
    state.lastRefresh = value;
  } else if (key == "runningSince") {
    state.runningSince = value;
  }
}

AgentState readState(BusReader reader) {
  AgentState state;
  reader.entries([&](const std::string& key, std::string_view type) {
    if (type == "s") {
      readText(state, key, reader.text());
    } else if (type == "x") {
      readInstant(state, key, instantOf(reader.int64()));
    } else if (type == "b" && key == "refreshing") {
      state.refreshing = reader.boolean();
    } else if (type == "as" && key == "serviceCapabilities") {
      state.serviceCapabilities = reader.texts();
    }
  });
  return state;
}

} // namespace

BusMessage AgentControl::answerTo(const char* method, const BusWriter::Contents& arguments) const {
  boost::asio::io_context loop{1};
  std::optional<BusAnswer> answer;
  try {
    const auto bus = BusConnection::toUserBus(loop.get_executor());
    bus->call(BusTarget{serviceName, objectPath, agentInterface}, method, arguments, timeout_,
              [&](BusAnswer given) { answer.emplace(std::move(given)); });
    while (!answer.has_value()) {
      loop.run_one();
    }
  } catch (const Error& error) {
    throw Error{error.code() == BusError::noBus ? AgentControlError::noBus : AgentControlError::refused, attempt};
  }
  if (!answer->has_value()) {
    throw Error{errorOf(answer->error()), attempt};
  }
  return **answer;
}

AgentState AgentControl::state() const {
  try {
    return readState(answerTo("GetState", [](BusWriter& /*nothing*/) {}).reader());
  } catch (const Error& error) {
    if (error.code() == BusError::malformed) {
      throw Error{AgentControlError::failed, attempt};
    }
    throw;
  }
}

void AgentControl::setAuthorization(const std::string& application, const std::string& displayName,
                                    AuthorizationStatus status) const {
  answerTo("SetAuthorization",
           [&](BusWriter& writer) { writer.text(application).text(displayName).text(statusWord(status)); });
}

void AgentControl::setTitles(ReminderTitles titles) const {
  answerTo("SetTitles", [&](BusWriter& writer) { writer.text(titles == ReminderTitles::said ? "said" : "general"); });
}

void AgentControl::setRefreshing(bool refreshing) const {
  answerTo("SetRefreshing", [&](BusWriter& writer) { writer.boolean(refreshing); });
}

void AgentControl::presentTest() const {
  answerTo("PresentTest", [](BusWriter& /*nothing*/) {});
}

} // namespace orvan
