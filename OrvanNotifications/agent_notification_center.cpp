#include "OrvanNotifications/agent_notification_center.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <future>
#include <utility>

#include "OrvanNotifications/internal/agent_link.h"

namespace orvan {
namespace {

using internal::AgentLink;
using internal::RemovalKind;

/// Runs until the loop is stopped, whatever an application's handlers throw.
void runLoop(const std::shared_ptr<boost::asio::io_context>& loop) {
  const auto work = boost::asio::make_work_guard(*loop);
  while (!loop->stopped()) {
    try {
      loop->run();
    } catch (...) { // NOLINT(bugprone-empty-catch): the fault of one handler must not end the others' conversation.
    }
  }
}

} // namespace

std::shared_ptr<AgentNotificationCenter> AgentNotificationCenter::make(AgentCenterOptions options) {
  std::shared_ptr<AgentNotificationCenter> center{new AgentNotificationCenter{std::move(options)}};
  center->start();
  return center;
}

AgentNotificationCenter::AgentNotificationCenter(AgentCenterOptions options)
    : options_(std::move(options)), loop_(std::make_shared<boost::asio::io_context>(1)) {}

void AgentNotificationCenter::start() {
  link_ = std::make_shared<AgentLink>(loop_, options_, weak_from_this());
  onLoop([](AgentLink& link) { link.connect(); });
  // The thread's share keeps the link through whatever handler lets this centre go.
  thread_ = std::thread{[loop = loop_, link = link_] { runLoop(loop); }};
}

AgentNotificationCenter::~AgentNotificationCenter() {
  try {
    leave();
  } catch (...) { // NOLINT(bugprone-empty-catch): what is still owed then stays owed.
  }
}

void AgentNotificationCenter::leave() {
  if (thread_.get_id() == std::this_thread::get_id()) {
    // A delegate or a handler has let the last share in this centre go on its own thread, which cannot wait for itself.
    thread_.detach();
    link_->flush([loop = loop_](bool /*all*/) { loop->stop(); });
  } else {
    flush(options_.callTimeout);
    loop_->stop();
    thread_.join();
  }
}

template <typename Action>
void AgentNotificationCenter::onLoop(Action action) const {
  boost::asio::post(*loop_, [weak = std::weak_ptr<AgentLink>{link_}, action = std::move(action)]() mutable {
    if (const auto link = weak.lock()) {
      action(*link);
    }
  });
}

void AgentNotificationCenter::getNotificationSettings(std::function<void(NotificationSettings)> completionHandler) {
  onLoop([handler = std::move(completionHandler)](AgentLink& link) { link.getSettings(handler); });
}

void AgentNotificationCenter::requestAuthorization(AuthorizationOptions options,
                                                   std::function<void(bool, std::exception_ptr)> completionHandler) {
  onLoop([options, handler = std::move(completionHandler)](AgentLink& link) mutable {
    link.requestAuthorization(options, std::move(handler));
  });
}

void AgentNotificationCenter::add(NotificationRequest request,
                                  std::function<void(std::exception_ptr)> completionHandler) {
  onLoop([request = std::move(request), handler = std::move(completionHandler)](AgentLink& link) {
    link.add(request, handler);
  });
}

void AgentNotificationCenter::getPendingNotificationRequests(
    std::function<void(std::vector<NotificationRequest>)> completionHandler) {
  onLoop([handler = std::move(completionHandler)](AgentLink& link) mutable { link.getPending(std::move(handler)); });
}

void AgentNotificationCenter::getDeliveredNotifications(
    std::function<void(std::vector<Notification>)> completionHandler) {
  onLoop([handler = std::move(completionHandler)](AgentLink& link) mutable { link.getDelivered(std::move(handler)); });
}

void AgentNotificationCenter::removePendingNotificationRequests(std::vector<std::string> identifiers) {
  onLoop([identifiers = std::move(identifiers)](AgentLink& link) mutable {
    link.remove(RemovalKind::pending, std::move(identifiers));
  });
}

void AgentNotificationCenter::removeDeliveredNotifications(std::vector<std::string> identifiers) {
  onLoop([identifiers = std::move(identifiers)](AgentLink& link) mutable {
    link.remove(RemovalKind::delivered, std::move(identifiers));
  });
}

std::shared_ptr<NotificationCenterDelegate> AgentNotificationCenter::delegate() const {
  const MutexLock lock{mutex_};
  return delegate_.lock();
}

void AgentNotificationCenter::setDelegate(std::weak_ptr<NotificationCenterDelegate> delegate) {
  const bool inFront = !delegate.expired();
  {
    const MutexLock lock{mutex_};
    delegate_ = std::move(delegate);
  }
  onLoop([inFront](AgentLink& link) { link.standInFront(inFront); });
}

bool AgentNotificationCenter::flush(std::chrono::milliseconds timeout) {
  if (thread_.get_id() == std::this_thread::get_id()) {
    return false;
  }
  auto flushed = std::make_shared<std::promise<bool>>();
  auto answer = flushed->get_future();
  onLoop([flushed](AgentLink& link) { link.flush([flushed](bool all) { flushed->set_value(all); }); });
  return answer.wait_for(timeout) == std::future_status::ready && answer.get();
}

} // namespace orvan
