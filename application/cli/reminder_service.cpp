#include "application/cli/reminder_service.h"

#include <iostream>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/log.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "application/cli/command_failure.h"
#include "application/cli/human_output.h"
#include "application/follow_ups/reminder_words.h"
#include "application/reminder_service/running_service.h"

namespace orvan {
namespace {

std::string sentenceFor(EffectReasonToken token, const ReminderService& service) {
  switch (token) {
    case EffectReasonToken::authorizationPending:
      return service.keepsStore()
                 ? "The desktop has asked you whether reminders are allowed; when you allow them, this one is set."
                 : "The desktop has asked you whether reminders are allowed; when you have allowed them, 'orvan "
                   "reminders reconcile' sets this one.";
    case EffectReasonToken::notificationsDenied:
      return "No reminder was set, because they are not allowed; 'orvan reminders allow' allows them.";
    default:
      return "No reminder was set: " + std::string{inWords(token)} + "; 'orvan reminders reconcile' tries again.";
  }
}

ReminderOutcome outcomeOf(std::optional<EffectReasonToken> token, const ReminderService& service) {
  if (token) {
    const bool isAsked = *token == EffectReasonToken::authorizationPending;
    return {std::string{caseName(*token)}, sentenceFor(*token, service), !isAsked};
  }
  if (service.state().service.empty()) {
    return {"set", "Its reminder is set. There is nothing here that shows notifications; it comes as soon as there is.",
            true};
  }
  return {"set", "Its reminder is set.", false};
}

/// Whether nothing can show a reminder now, and what can will withdraw those that are not to be shown when it starts.
bool isAway(AgentControlError error) {
  return error == AgentControlError::noBus || error == AgentControlError::noAgent;
}

/// Whether a command has to say that it could not reach the service.
enum class Absence { told, passedOver };

ReminderOutcome unreachable(const std::string& what, const Error& error, Absence absence) {
  if (error.code().category() != agentControlErrorCategory()) {
    return {"unreachable", what + ": " + failureOfCurrentException().what(), true};
  }
  const auto reason = static_cast<AgentControlError>(error.code().value());
  const bool isTold = absence == Absence::told || !isAway(reason);
  return {"unreachable", isTold ? what + ". " + sentenceOf(reason) : "", isTold};
}

/// What `act` gives, or what hinders it.
template <typename Act>
ReminderOutcome withService(const CommandContext& context, const std::string& what, Absence absence, Act act) {
  try {
    ReminderService service(context.session.settings());
    return act(service);
  } catch (const Error& error) {
    return unreachable(what, error, absence);
  } catch (const std::exception&) {
    return {"unreachable", what + "; 'orvan reminders reconcile' tries again.", true};
  }
}

} // namespace

ReminderService::ReminderService(const SessionSettings& settings)
    : settings_(settings),
      state_(usableService(settings)),
      center_(AgentNotificationCenter::make(centerOptionsFor(settings))),
      scheduling_(std::make_shared<UserNotificationsFollowUpScheduling>(journalOrNoLogSink())) {
  NotificationCenter::setCurrent(center_);
}

ReminderService::~ReminderService() {
  reminders_.reset();
  center_->flush(patienceWithService);
  NotificationCenter::setCurrent(nullptr);
}

void ReminderService::lookAgain() {
  state_ = AgentControl(patienceWithService).state();
}

AuthorizationStatus ReminderService::authorization() {
  return waitFor(sharedWorkExecutor(), center_->notificationSettings()).authorizationStatus();
}

NotificationKeys ReminderService::pending() {
  auto pending = waitFor(sharedWorkExecutor(), scheduling_->readPendingRequestKeys());
  if (!pending) {
    throw Error(AgentControlError::tooSlow, "reading the reminders");
  }
  return *std::move(pending);
}

NotificationKeys ReminderService::delivered() {
  return waitFor(sharedWorkExecutor(), scheduling_->deliveredRequestKeys());
}

Reminders& ReminderService::reminders() {
  if (!reminders_) {
    reminders_.emplace(settings_, scheduling_, briefWaitForTheUser, sharedWorkExecutor(),
                       std::make_shared<SystemClock>(), journalOrNoLogSink());
  }
  return *reminders_;
}

bool ReminderService::keepsStore() const {
  return orvan::keepsStore(state_, settings_);
}

std::string sentenceOf(AgentControlError error) {
  switch (error) {
    case AgentControlError::noBus:
      return "There is no desktop session to remind you in; reminders are set when 'orvan reminders reconcile' is run "
             "in one.";
    case AgentControlError::noAgent:
      return "The reminder service (orvan-agent) does not run and could not be started; install it and run 'orvan "
             "reminders reconcile'.";
    case AgentControlError::tooSlow:
    case AgentControlError::left:
      return "The reminder service did not answer; run 'orvan reminders reconcile' in a while.";
    case AgentControlError::refused:
      return "The reminder service did not take that; 'orvan reminders' tells how it is.";
    case AgentControlError::locked:
      return "The reminder service cannot read its key; unlock the desktop's keyring and run 'orvan reminders "
             "reconcile'.";
    case AgentControlError::unusable:
      return "The reminder service cannot use its file; its journal tells more ('journalctl --user -u orvan-agent').";
    case AgentControlError::noNotificationService:
      return "There is nothing here that shows notifications; start a notification service, such as dunst or your "
             "desktop's own.";
    case AgentControlError::notYours:
      return "The reminder service is another user's; run this as the user who is logged in.";
    case AgentControlError::failed:
      return "The reminder service is of another version; start it anew ('systemctl --user restart orvan-agent').";
  }
  return "The reminder service cannot be used.";
}

ReminderOutcome setReminder(const CommandContext& context, const std::string& followUpID) {
  return withService(context, "No reminder was set", Absence::told,
                     [&](ReminderService& service) { return outcomeOf(service.reminders().set(followUpID), service); });
}

ReminderOutcome withdrawReminder(const CommandContext& context, const std::string& followUpID) {
  return withService(context, "Its reminder was not withdrawn", Absence::passedOver, [&](ReminderService& service) {
    service.reminders().withdraw(followUpID);
    return ReminderOutcome{"withdrawn", ""};
  });
}

ReminderOutcome bringRemindersInLine(const CommandContext& context) {
  return withService(context, "Reminders were not brought in line", Absence::passedOver, [](ReminderService& service) {
    service.reminders().reconcile();
    return ReminderOutcome{"inLine", ""};
  });
}

bool hasFollowUps(Session& session) {
  return session.readableStore().read([](Connection& connection) {
    return connection.fetchOptionalInteger("SELECT 1 FROM follow_up LIMIT 1").has_value();
  });
}

void tell(const CommandContext& context, const ReminderOutcome& outcome) {
  if (outcome.isWarning) {
    std::cout.flush();
    std::cerr << "orvan: " << outcome.sentence << '\n';
  } else if (!outcome.sentence.empty() && context.output == OutputForm::human) {
    HumanOutput{}.line(outcome.sentence);
  }
}

} // namespace orvan
