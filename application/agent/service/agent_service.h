#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/log.h"
#include "application/agent/desktop/desktop_notifications.h"
#include "application/agent/reminders/reminder_center.h"
#include "application/agent/service/bus_foreground.h"

namespace orvan {

/// Why nothing can be asked of the reminders.
enum class ReminderFileTrouble {
  /// Its key cannot be read now: the keyring is locked.
  locked,
  unusable,
};

/// What the agent tells of itself and lets be set, beyond what its other parts know.
struct AgentStatus {
  /// The file whose follow-ups are the agent's own.
  std::string store;
  LogChannel log;
  std::function<std::optional<Instant>()> lastRefresh;
  std::function<void(bool isOn)> refreshingWasSet;
  std::function<void(const std::string& application, AuthorizationStatus status)> authorizationChanged;
  std::optional<Instant> runningSince = std::nullopt;
};

/// The agent's object on the bus: what agent_protocol says, for programs of this user and nobody else. What is asked
/// before the reminders' file is open waits until it is, or cannot be opened.
///
/// Belongs to the thread of its bus connection, which must outlive it, as the foreground and the desktop must.
class AgentService final : private ReminderCenterListener {
 public:
  AgentService(BusConnection& bus, BusForeground& foreground, const DesktopNotifications& desktop, AgentStatus status);

  /// From now on the reminders can be asked for: listens to `center` and lets it start with what was decided.
  void serve(std::shared_ptr<ReminderCenter> center);
  /// Until then they cannot. `askedForAgain` is called each time somebody asks.
  void refuse(ReminderFileTrouble trouble, std::function<void()> askedForAgain);
  /// Nothing is asked of the center any more; what is asked of the agent waits.
  void stop();

 private:
  using Body = std::function<void(ReminderCenter&, BusCall&)>;
  struct Waiting {
    BusCall call;
    std::function<void(BusCall&)> body;
  };

  BusInterface centerInterface();
  BusInterface agentInterface();
  /// `body` for this user's programs alone, and not before it is known whether the file can be used.
  BusInterface::Handler forUser(std::function<void(BusCall&)> body);
  /// The same where the file has to be open.
  BusInterface::Handler onCenter(Body body);
  bool isOfThisUser(BusCall& call);
  void answerWaiting();
  void withCenter(const Body& body, BusCall& call);

  void requestAuthorization(ReminderCenter& center, BusCall& call);
  void setAuthorization(ReminderCenter& center, BusCall& call);
  void standInFront(BusCall& call);
  void setRefreshing(ReminderCenter& center, BusCall& call);
  void tellState(BusCall& call) const;
  void writeState(BusWriter& entries) const;

  void authorizationChanged(const std::string& application, AuthorizationStatus status) override;
  void reminderActivated(const std::string& application, const std::string& identifier,
                         std::string_view action) override;
  void reminderFileFailed(const Error& error) override;

  BusConnection& bus_;
  BusForeground& foreground_;
  const DesktopNotifications& desktop_;
  AgentStatus status_;
  std::shared_ptr<ReminderCenter> center_;
  std::optional<ReminderFileTrouble> trouble_;
  std::function<void()> askedForAgain_;
  std::vector<Waiting> waiting_;
  std::vector<BusSubscription> interfaces_;
};

} // namespace orvan
