#pragma once

#include <functional>
#include <optional>
#include <string>

#include "OrvanNotifications/agent_control_error.h"
#include "OrvanNotifications/agent_state.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanSpineCore/effect_reason_token.h"
#include "application/session/session_settings.h"

namespace orvan {

/// What became of a follow-up's reminder.
struct ReminderEnd {
  /// Why it was not set; neither when it was.
  std::optional<AgentControlError> unreached = {};
  std::optional<EffectReasonToken> hindrance = {};
  /// Whether there is anything that shows notifications.
  bool canBeShown = true;
  /// Whether the service sets what is missing by itself once it can.
  bool comesByItself = true;
};

/// The reminders of the window's follow-ups, on a thread of their own: to reach the reminder service and to wait for
/// the user's permission takes seconds. They are in the process's notification centre.
///
/// Any thread may call it. The destructor has what was asked for before it done to the end, without what it calls; so
/// that nothing asked of it by the store's thread is lost, it must outlive that.
class WindowReminders {
 public:
  /// How the reminder service is, once it can be used; throws Error with an AgentControlError when it cannot.
  using Service = std::function<AgentState()>;

  WindowReminders(SessionSettings settings, Service service);

  /// Calls `done` on a thread of its own choice.
  void set(std::string followUpID, std::function<void(ReminderEnd)> done);
  /// What hinders it is no fault: whoever brings the reminders in line next does it.
  void withdraw(std::string followUpID);
  /// Brings all of them in line with the follow-ups, after something that concerns an unknown number of them. Nothing
  /// is asked of a service that does not run: it does the same when it starts.
  void bringInLine();

 private:
  SessionSettings settings_;
  Service service_;
  WorkExecutor worker_;
};

} // namespace orvan
