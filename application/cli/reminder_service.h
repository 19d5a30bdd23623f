#pragma once

#include <memory>
#include <optional>
#include <string>

#include "OrvanNotifications/agent_control.h"
#include "OrvanNotifications/agent_control_error.h"
#include "OrvanNotifications/agent_notification_center.h"
#include "application/cli/commands.h"
#include "application/follow_ups/reminders.h"

namespace orvan {

/// The reminder service, for as long as a command needs it. It is the process's notification centre meanwhile, so there
/// is one at a time. At the end all that was withdrawn is on its way for good.
class ReminderService {
 public:
  /// Starts the service when it does not run. Throws Error with an AgentControlError when it cannot be used.
  explicit ReminderService(const SessionSettings& settings);
  ~ReminderService();
  ReminderService(const ReminderService&) = delete;
  ReminderService& operator=(const ReminderService&) = delete;

  /// How it was found at the last look, the first of which is at the beginning.
  const AgentState& state() const noexcept { return state_; }
  /// Throws Error with an AgentControlError.
  void lookAgain();
  /// Whether the user allows reminders.
  AuthorizationStatus authorization();
  /// The identifiers of what it holds for this store. Throws Error with AgentControlError::tooSlow.
  NotificationKeys pending();
  NotificationKeys delivered();
  /// The reminders of the store's follow-ups. The first call opens the store anew.
  Reminders& reminders();

  /// Whether the service keeps this store's reminders in line by itself.
  bool keepsStore() const;

 private:
  SessionSettings settings_;
  AgentState state_;
  std::shared_ptr<AgentNotificationCenter> center_;
  std::shared_ptr<FollowUpNotificationScheduling> scheduling_;
  std::optional<Reminders> reminders_;
};

/// What to say of a service that cannot be used, as a sentence with what to do.
std::string sentenceOf(AgentControlError error);

/// What became of a follow-up's reminder.
struct ReminderOutcome {
  /// For JSON: "set", "withdrawn", "unreachable", or the name of the reason why not.
  std::string word;
  /// For people; empty when there is nothing to say. One that asks for something to be done goes to standard error.
  std::string sentence;
  bool isWarning = false;
};

/// Sets the reminder of a follow-up that was just written. What hinders it is no failure of the command.
ReminderOutcome setReminder(const CommandContext& context, const std::string& followUpID);
/// Withdraws the reminder of one that was just ended.
ReminderOutcome withdrawReminder(const CommandContext& context, const std::string& followUpID);
/// Brings all reminders in line, after something that concerns an unknown number of follow-ups.
ReminderOutcome bringRemindersInLine(const CommandContext& context);
/// Whether the store holds any follow-ups, in whatever state.
bool hasFollowUps(Session& session);

/// Says what there is to say.
void tell(const CommandContext& context, const ReminderOutcome& outcome);

} // namespace orvan
