#include "application/desktop/reminder_in_front.h"

#include <exception>
#include <utility>

#include "OrvanPlatform/work_executor.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_delegate.h"
#include "application/store/application_store.h"
#include "application/store/store_key.h"

namespace orvan {
namespace {

/// Opened for one question: reminders are rare, and a store that is kept open cannot be restored or given a new key.
Task<std::shared_ptr<DatabasePool>> openPool(SessionSettings settings) {
  co_return ApplicationStore::openPool(settings.store, CredentialVault{std::make_shared<StoreKey>(settings.keyFile)});
}

Task<PresentationOptions> optionsByStore(Executor executor, SessionSettings settings, std::string followUpID) {
  auto pool = co_await runOn(sharedWorkExecutor(), openPool(std::move(settings)));
  const auto delegate =
      std::make_shared<FollowUpNotificationDelegate>(std::move(pool), std::move(executor), sharedWorkExecutor());
  co_return co_await delegate->presentationOptions(std::move(followUpID));
}

} // namespace

void ReminderInFront::willPresent(std::shared_ptr<NotificationCenter> /*center*/, Notification notification,
                                  Answer completionHandler) {
  loop_.post([weak = weak_from_this(), followUpID = notification.request().identifier(),
              completionHandler = std::move(completionHandler)] {
    if (auto self = weak.lock()) {
      auto& loop = self->loop_;
      startOn(loop, answer(std::move(self), followUpID, completionHandler));
    }
  });
}

Task<void> ReminderInFront::answer(std::shared_ptr<ReminderInFront> self, std::string followUpID, Answer answer) {
  PresentationOptions options;
  try {
    options = co_await optionsByStore(self->loop_.executor(), self->settings_, followUpID);
    if (!options.empty() && co_await self->followUps_.tellsOf(followUpID)) {
      options = {};
    }
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): what cannot be checked is not shown.
  }
  answer(options);
}

} // namespace orvan
