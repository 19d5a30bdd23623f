#include "OrvanRelationshipAttention/follow_up/follow_up_notification_delegate.h"

#include <boost/asio/detached.hpp>
#include <utility>

#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"

namespace orvan {
namespace {

Task<PresentationOptions> optionsByStore(std::shared_ptr<DatabasePool> pool, std::string reminderID) {
  try {
    const bool mayPresent = pool->read(
        [&](Connection& connection) { return FollowUpScheduler::notificationMayPresent(connection, reminderID); });
    co_return mayPresent ? PresentationOptions::banner | PresentationOptions::sound : PresentationOptions{};
  } catch (...) {
    co_return PresentationOptions{};
  }
}

} // namespace

FollowUpNotificationDelegate::FollowUpNotificationDelegate(std::shared_ptr<DatabasePool> pool, Executor mainExecutor,
                                                           Executor storeExecutor)
    : pool_(std::move(pool)), mainExecutor_(std::move(mainExecutor)), storeExecutor_(std::move(storeExecutor)) {}

void FollowUpNotificationDelegate::installIfNeeded() {
  const auto center = NotificationCenter::current();
  const auto installed = center->delegate();
  if (installed == nullptr || installed.get() == this) {
    center->setDelegate(weak_from_this());
  }
}

Task<PresentationOptions> FollowUpNotificationDelegate::presentationOptions(std::string reminderID) const {
  return runOn(storeExecutor_, optionsByStore(pool_, std::move(reminderID)));
}

void FollowUpNotificationDelegate::willPresent(std::shared_ptr<NotificationCenter> /*center*/,
                                               Notification notification,
                                               std::function<void(PresentationOptions)> completionHandler) {
  boost::asio::co_spawn(mainExecutor_,
                        answer(weak_from_this(), notification.request().identifier(), std::move(completionHandler)),
                        boost::asio::detached);
}

Task<void> FollowUpNotificationDelegate::answer(std::weak_ptr<const FollowUpNotificationDelegate> delegate,
                                                std::string reminderID,
                                                std::function<void(PresentationOptions)> completionHandler) {
  PresentationOptions options;
  if (const auto self = delegate.lock()) {
    options = co_await self->presentationOptions(std::move(reminderID));
  }
  completionHandler(options);
}

} // namespace orvan
