#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanNotifications/agent_notification_center.h"
#include "OrvanNotifications/internal/removal_queue.h"
#include "OrvanPlatform/bus/bus_connection.h"

namespace orvan::internal {

/// One centre's conversation with the service. All of it happens on the one thread that runs `loop`, which stays as
/// long as this does.
class AgentLink : public std::enable_shared_from_this<AgentLink> {
 public:
  using SettingsHandler = std::function<void(NotificationSettings)>;
  using AuthorizationHandler = std::function<void(bool, std::exception_ptr)>;

  /// `center` is what an application's delegate is told of.
  AgentLink(std::shared_ptr<boost::asio::io_context> loop, AgentCenterOptions options,
            std::weak_ptr<NotificationCenter> center);

  /// Without a bus, nothing is true afterwards but that every question fails.
  void connect();

  void getSettings(const SettingsHandler& handler);
  void requestAuthorization(AuthorizationOptions options, AuthorizationHandler handler);
  void add(const NotificationRequest& request, const std::function<void(std::exception_ptr)>& handler);
  void getPending(std::function<void(std::vector<NotificationRequest>)> handler);
  void getDelivered(std::function<void(std::vector<Notification>)> handler);
  void remove(RemovalKind kind, std::vector<std::string> identifiers);
  void standInFront(bool inFront);
  /// Calls `done` when no removal is under way, with whether none is owed.
  void flush(std::function<void(bool)> done);

 private:
  bool canBeAsked() const noexcept { return bus_ != nullptr && !mute_; }
  void ask(const char* method, const BusWriter::Contents& arguments, BusConnection::AnswerHandler answer);
  void call(const char* method, const BusWriter::Contents& arguments, BusConnection::AnswerHandler answer);
  BusWriter::Contents applicationOnly() const;
  void heard(const BusAnswer& answer);
  void becomeMute();
  void probeAnswered(const BusAnswer& answer);
  void ownerChanged(const std::string& owner);
  void agentIsBack();
  void busLost();

  void learn(AuthorizationStatus status);
  void authorizationChanged(const BusMessage& message);
  void activated(const BusMessage& message);

  void askUser();
  void questionAnswered(const BusAnswer& answer);
  void awaitReturn();
  void endQuestion(bool granted, const std::exception_ptr& error);

  void sendRemovals();
  void removalAnswered(std::uint64_t id, const BusAnswer& answer);
  void tellFlushed();

  void willPresent(BusCall call);
  std::function<void(PresentationOptions)> presentationHandler(BusCall call);
  void present(std::uint64_t question, PresentationOptions options);

  const std::shared_ptr<boost::asio::io_context> loop_;
  const AgentCenterOptions options_;
  const std::weak_ptr<NotificationCenter> center_;

  std::unique_ptr<BusConnection> bus_;
  std::vector<BusSubscription> subscriptions_;
  std::string owner_;
  bool ownerSeen_ = false;
  bool callFailed_ = false;
  /// A question went unanswered; nothing but the probe is asked until the service is heard of.
  bool mute_ = false;
  boost::asio::steady_timer quietTimer_;
  bool inFront_ = false;

  std::optional<AuthorizationStatus> lastStatus_;
  std::vector<AuthorizationHandler> authorizationWaiters_;
  AuthorizationOptions authorizationOptions_ = AuthorizationOptions::alert;
  bool returnAwaited_ = false;
  boost::asio::steady_timer returnTimer_;

  RemovalQueue removals_;
  std::map<std::string, std::uint64_t> additions_;
  std::uint64_t nextAddition_ = 0;
  std::vector<std::function<void(bool)>> flushing_;

  std::map<std::uint64_t, BusCall> presenting_;
  std::uint64_t nextPresenting_ = 0;
};

} // namespace orvan::internal
