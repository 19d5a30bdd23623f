#pragma once

#include <chrono>
#include <string>

#include "OrvanNotifications/agent_state.h"
#include "OrvanPlatform/bus/bus_message.h"
#include "OrvanPlatform/notification_center/notification_settings.h"

namespace orvan {

/// What the user's own tools ask of the reminder service besides notifications: how it is, and how it is to behave.
///
/// Each operation blocks until the service has answered, starting it when it does not run, and throws Error with an
/// AgentControlError when it has not within the timeout or when it refuses. Holds no connection; may be used from any
/// thread.
class AgentControl {
 public:
  explicit AgentControl(std::chrono::milliseconds timeout = std::chrono::seconds{5}) : timeout_(timeout) {}

  /// What a newer service says in words that are not known here is left out.
  AgentState state() const;
  /// Decides for the user whether `application` may show notifications. A question that is open is answered with it.
  void setAuthorization(const std::string& application, const std::string& displayName,
                        AuthorizationStatus status) const;
  void setTitles(ReminderTitles titles) const;
  void setRefreshing(bool refreshing) const;
  /// Shows a notification that says nothing, at once.
  void presentTest() const;

 private:
  BusMessage answerTo(const char* method, const BusWriter::Contents& arguments) const;

  std::chrono::milliseconds timeout_;
};

} // namespace orvan
