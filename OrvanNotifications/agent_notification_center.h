#pragma once

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "OrvanPlatform/mutex.h"
#include "OrvanPlatform/notification_center/notification_center.h"

namespace orvan {

namespace internal {
class AgentLink;
}

/// Who asks the reminder service, and how long an answer may take.
struct AgentCenterOptions {
  /// Whom requests, notifications and the user's permission belong to ("org.example.Diary"): the same in every run.
  std::string application;
  /// What the user is told who asks.
  std::string displayName;
  std::chrono::milliseconds callTimeout = std::chrono::seconds{5};
  /// Called when the service can be asked again after a time in which it could not: what was refused meanwhile may be
  /// asked anew. On the centre's own thread, which it must not hold up.
  std::function<void()> agentReturned = nullptr;
  /// Called when the user acts on one of the application's notifications: clicks on it
  /// (agent_protocol::clickAction), or takes an action that the service does not carry out itself. On the centre's own
  /// thread.
  std::function<void(const std::string& identifier, const std::string& action)> activated = nullptr;
};

/// The notification centre of the reminder service, orvan-agent, which keeps an application's requests and shows them
/// at their time, whether the application runs or not.
///
/// Each question is put over the user's bus, which starts the service when it does not run, from a thread of the
/// centre's own, where completion handlers run, too. No question is open for longer than the call's timeout, except the
/// one for the user's permission; its handler is then given NotificationCenterError::unavailable or, where it takes no
/// error, dropped. After one question that nobody answered in time, others fail at once, for as long as a call may take
/// and until the service has been heard of again. Without a bus every question fails at once.
///
/// A service that cannot be reached has decided nothing: getNotificationSettings() gives the last status that was
/// learned, or notDetermined. A question for permission that was open when the service went is put again when it
/// returns within the timeout, and else ends as unavailable.
///
/// Removals are sent in their order, and kept while the service is away; flush() waits for them, and so does the
/// destructor, for as long as a call may take. While there is a delegate the application stands in front, and the
/// service asks it before it shows one of its notifications.
class AgentNotificationCenter final : public NotificationCenter {
 public:
  static std::shared_ptr<AgentNotificationCenter> make(AgentCenterOptions options);
  ~AgentNotificationCenter() override;
  AgentNotificationCenter(const AgentNotificationCenter&) = delete;
  AgentNotificationCenter& operator=(const AgentNotificationCenter&) = delete;

  void getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) override;
  void requestAuthorization(AuthorizationOptions options,
                            std::function<void(bool granted, std::exception_ptr error)> completionHandler) override;
  void add(NotificationRequest request, std::function<void(std::exception_ptr error)> completionHandler) override;
  void getPendingNotificationRequests(std::function<void(std::vector<NotificationRequest>)> completionHandler) override;
  void getDeliveredNotifications(std::function<void(std::vector<Notification>)> completionHandler) override;
  void removePendingNotificationRequests(std::vector<std::string> identifiers) override;
  void removeDeliveredNotifications(std::vector<std::string> identifiers) override;
  std::shared_ptr<NotificationCenterDelegate> delegate() const override;
  void setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) override;

  /// Waits until every removal so far is answered, or can be told not to be: the service is away and cannot be started.
  /// Whether all of them were carried out. From any thread but the centre's own, where it does nothing.
  bool flush(std::chrono::milliseconds timeout);

 private:
  explicit AgentNotificationCenter(AgentCenterOptions options);

  void start();
  void leave();
  template <typename Action>
  void onLoop(Action action) const;

  const AgentCenterOptions options_;
  const std::shared_ptr<boost::asio::io_context> loop_;
  std::shared_ptr<internal::AgentLink> link_;
  std::thread thread_;

  mutable Mutex mutex_;
  std::weak_ptr<NotificationCenterDelegate> delegate_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
