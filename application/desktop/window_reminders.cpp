#include "application/desktop/window_reminders.h"

#include <boost/asio/post.hpp>
#include <exception>
#include <memory>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/log.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "application/follow_ups/reminders.h"
#include "application/follow_ups/store_follow_ups.h"
#include "application/reminder_service/running_service.h"

namespace orvan {
namespace {

Reminders remindersOf(const SessionSettings& settings) {
  const auto log = journalOrNoLogSink();
  return {settings,
          std::make_shared<UserNotificationsFollowUpScheduling>(log),
          briefWaitForTheUser,
          sharedWorkExecutor(),
          std::make_shared<SystemClock>(),
          log};
}

ReminderEnd setNow(const std::string& followUpID, const SessionSettings& settings,
                   const WindowReminders::Service& service) {
  try {
    const auto state = service();
    return {.hindrance = remindersOf(settings).set(followUpID),
            .canBeShown = !state.service.empty(),
            .comesByItself = keepsStore(state, settings)};
  } catch (const Error& error) {
    if (error.code().category() == agentControlErrorCategory()) {
      return {.unreached = static_cast<AgentControlError>(error.code().value())};
    }
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): as any other failure of the store.
  }
  return {.hindrance = EffectReasonToken::storeUnreadable};
}

void withdrawNow(const std::string& followUpID, const SessionSettings& settings,
                 const WindowReminders::Service& service) {
  try {
    service();
    remindersOf(settings).withdraw(followUpID);
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the next to bring reminders in line does it.
  }
}

void bringInLineNow(const SessionSettings& settings) {
  try {
    AgentControl(patienceWithService).state();
    StoreFollowUps(settings).reconcile(std::make_shared<UserNotificationsFollowUpScheduling>(journalOrNoLogSink()));
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): the next to bring reminders in line does it.
  }
}

} // namespace

WindowReminders::WindowReminders(SessionSettings settings, Service service)
    : settings_(std::move(settings)), service_(std::move(service)) {}

void WindowReminders::set(std::string followUpID, std::function<void(ReminderEnd)> done) {
  boost::asio::post(worker_.get(), [this, followUpID = std::move(followUpID), done = std::move(done)] {
    done(setNow(followUpID, settings_, service_));
  });
}

void WindowReminders::withdraw(std::string followUpID) {
  boost::asio::post(worker_.get(),
                    [this, followUpID = std::move(followUpID)] { withdrawNow(followUpID, settings_, service_); });
}

void WindowReminders::bringInLine() {
  boost::asio::post(worker_.get(), [this] { bringInLineNow(settings_); });
}

} // namespace orvan
