#include "application/desktop/reminder_service_model.h"

#include <optional>
#include <utility>

#include "OrvanNotifications/agent_control.h"
#include "OrvanNotifications/agent_control_error.h"
#include "OrvanPlatform/error.h"
#include "application/desktop/refusal_in_words.h"
#include "application/desktop/reminder_service_reading.h"
#include "application/desktop/wording.h"
#include "application/follow_ups/notification_application.h"
#include "application/reminder_service/running_service.h"

namespace orvan {
namespace {

/// How the service is, or why it cannot be asked.
struct ServiceAnswer {
  std::optional<ReminderServiceReading> reading;
  AgentControlError error = AgentControlError::failed;
};

ServiceAnswer askService(const SessionSettings& settings) {
  try {
    return {.reading = readReminderService(settings)};
  } catch (const Error& error) {
    if (error.code().category() != agentControlErrorCategory()) {
      throw;
    }
    return {.reading = std::nullopt, .error = static_cast<AgentControlError>(error.code().value())};
  }
}

} // namespace

Task<void> ReminderServiceModel::refresh() {
  const auto answer = co_await lookInto([settings = tools().store.settings()] { return askService(settings); });
  if (answer.reading) {
    show(*answer.reading);
  } else {
    showAbsence(answer.error == AgentControlError::noAgent ? NotRunning : CannotBeAsked, inWords(answer.error));
  }
}

void ReminderServiceModel::show(const ReminderServiceReading& reading) {
  const auto& state = reading.state;
  standing_ = Running;
  isAllowed_ = reading.authorization == AuthorizationStatus::authorized ||
               reading.authorization == AuthorizationStatus::provisional;
  saysNotes_ = state.titles == ReminderTitles::said;
  looksForNew_ = state.refreshing;
  details_.clear();
  details_ << (state.runningSince ? tr("The reminder service runs since %1.").arg(momentInWords(*state.runningSince))
                                  : tr("The reminder service runs."));
  if (reading.countSet == 0) {
    details_ << tr("No reminder is set.");
  } else if (state.nextDue && reading.keepsStore) {
    details_
        << tr("Reminders set: %1. The next one comes %2.").arg(reading.countSet).arg(momentInWords(*state.nextDue));
  } else {
    details_ << tr("Reminders set: %1.").arg(reading.countSet);
  }
  if (state.refreshing && state.lastRefresh) {
    details_ << tr("It last looked for new mail %1.").arg(momentInWords(*state.lastRefresh));
  }
  trouble_ = state.service.empty() ? inWords(AgentControlError::noNotificationService) : QString{};
  if (!reading.keepsStore) {
    details_ << tr(
        "The service was started for another store. It shows this one's reminders, and does not look for its "
        "new mail.");
  }
  setGlance(!isAllowed_
                ? (reading.authorization == AuthorizationStatus::denied ? tr("Not allowed") : tr("Not allowed yet"))
            : trouble_.isEmpty() ? tr("Allowed")
                                 : tr("Nothing can show them"));
  Q_EMIT changed();
}

void ReminderServiceModel::showAbsence(Standing standing, const QString& trouble) {
  standing_ = standing;
  isAllowed_ = false;
  details_.clear();
  trouble_ = trouble;
  setGlance(standing == NotRunning ? tr("The service does not run") : tr("The service cannot be asked"));
  Q_EMIT changed();
}

template <typename Change>
Task<void> ReminderServiceModel::change(Change change, QString done) {
  co_await lookInto([change] { change(AgentControl{}); });
  say(done);
  co_await refresh();
}

void ReminderServiceModel::allow(bool isAllowed) {
  begin(allowIt(isAllowed));
}

Task<void> ReminderServiceModel::allowIt(bool isAllowed) {
  const auto application = notificationApplicationOf(tools().store.settings().store);
  const auto status = isAllowed ? AuthorizationStatus::authorized : AuthorizationStatus::denied;
  co_await lookInto([application, status] {
    AgentControl{}.setAuthorization(application, std::string{notificationDisplayName}, status);
  });
  if (isAllowed) {
    Q_EMIT allowed();
  }
  co_await refresh();
}

void ReminderServiceModel::sayNotes(bool saysNotes) {
  begin(change(
      [saysNotes](const AgentControl& agent) {
        agent.setTitles(saysNotes ? ReminderTitles::said : ReminderTitles::general);
      },
      {}));
}

void ReminderServiceModel::lookForNew(bool looksForNew) {
  begin(change([looksForNew](const AgentControl& agent) { agent.setRefreshing(looksForNew); }, {}));
}

void ReminderServiceModel::showTest() {
  begin(change(
      [](const AgentControl& agent) { agent.presentTest(); },
      tr("A test reminder was shown. If you do not see it, look at your desktop's settings for notifications.")));
}

void ReminderServiceModel::startService() {
  begin(start());
}

Task<void> ReminderServiceModel::start() {
  co_await lookInto([settings = tools().store.settings()] { usableService(settings); });
  co_await refresh();
}

} // namespace orvan
