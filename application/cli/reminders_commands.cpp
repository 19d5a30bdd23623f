#include "application/cli/reminders_commands.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "application/cli/command_failure.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/follow_ups/notification_application.h"
#include "application/reminder_service/running_service.h"
#include "application/session/listed_follow_up.h"

namespace orvan {
namespace {

/// How what the service holds compares with the store's follow-ups.
struct Agreement {
  std::size_t set = 0;
  std::size_t shown = 0;
  /// Follow-ups to come whose reminder is not set.
  std::size_t missing = 0;
  /// Reminders of what is no follow-up any more, or is hidden.
  std::size_t leftOver = 0;

  bool isWhole() const noexcept { return missing == 0 && leftOver == 0; }
};

/// The ids of the follow-ups that are to have a reminder at some time, and of those whose time is to come.
struct Wanted {
  NotificationKeys all;
  NotificationKeys toCome;
};

Wanted wantedReminders(Instant now, Connection& connection) {
  Wanted wanted;
  NotificationKeys hidden;
  for (const auto& followUp : hiddenFollowUps(connection)) {
    hidden.insert(followUp.id);
  }
  for (const auto& followUp : followUps(FollowUpChoice::scheduled, connection)) {
    if (hidden.contains(followUp.id) || !FollowUpScheduler::notificationMayPresent(connection, followUp.id)) {
      continue;
    }
    wanted.all.insert(followUp.id);
    if (followUp.dueAt > now) {
      wanted.toCome.insert(followUp.id);
    }
  }
  return wanted;
}

Agreement agreementOf(const CommandContext& context, ReminderService& service) {
  const auto wanted = context.session.readableStore().read(
      [&](Connection& connection) { return wantedReminders(context.asOf, connection); });
  const auto pending = service.pending();
  const auto delivered = service.delivered();
  const auto isUnwanted = [&](const std::string& key) { return !wanted.all.contains(key); };
  return {.set = pending.size(),
          .shown = delivered.size(),
          .missing = static_cast<std::size_t>(
              std::ranges::count_if(wanted.toCome, [&](const std::string& id) { return !pending.contains(id); })),
          .leftOver = static_cast<std::size_t>(std::ranges::count_if(pending, isUnwanted) +
                                               std::ranges::count_if(delivered, isUnwanted))};
}

std::string_view caseName(AuthorizationStatus status) {
  switch (status) {
    case AuthorizationStatus::denied:
      return "denied";
    case AuthorizationStatus::authorized:
      return "authorized";
    case AuthorizationStatus::provisional:
      return "provisional";
    case AuthorizationStatus::notDetermined:
      break;
  }
  return "notDetermined";
}

std::string inWords(AuthorizationStatus status) {
  switch (status) {
    case AuthorizationStatus::denied:
      return "not allowed; 'orvan reminders allow' allows them";
    case AuthorizationStatus::authorized:
    case AuthorizationStatus::provisional:
      return "allowed";
    case AuthorizationStatus::notDetermined:
      break;
  }
  return "not decided yet; 'orvan reminders allow' allows them";
}

bool isAllowed(AuthorizationStatus status) {
  return status == AuthorizationStatus::authorized || status == AuthorizationStatus::provisional;
}

std::string inWords(const Agreement& agreement, AuthorizationStatus status) {
  const auto held = counted(static_cast<std::int64_t>(agreement.set), "reminder is set", "reminders are set");
  if (agreement.isWhole()) {
    return held + ", as the follow-ups say";
  }
  if (!isAllowed(status) && agreement.leftOver == 0) {
    return held + ", and " + std::to_string(agreement.missing) + " more when they are allowed";
  }
  std::string amiss = agreement.missing == 0 ? "" : std::to_string(agreement.missing) + " missing";
  if (agreement.leftOver > 0) {
    amiss += (amiss.empty() ? "" : ", ") + std::to_string(agreement.leftOver) + " left over";
  }
  return held + "; " + amiss + ": 'orvan reminders reconcile' mends that";
}

std::string serviceInWords(const AgentState& state) {
  return state.service.empty() ? "none; start a notification service, such as dunst or your desktop's own"
                               : printableText(state.service);
}

void print(const CommandContext& context, ReminderService& service) {
  const auto agreement = agreementOf(context, service);
  const auto authorization = service.authorization();
  const auto& state = service.state();
  const auto momentOrNull = [](const std::optional<Instant>& moment) {
    return moment ? Json(formatInternetDateTime(*moment)) : Json(nullptr);
  };
  if (context.output == OutputForm::json) {
    printJson({{"authorization", caseName(authorization)},
               {"set", agreement.set},
               {"shown", agreement.shown},
               {"missing", agreement.missing},
               {"leftOver", agreement.leftOver},
               {"nextDue", momentOrNull(state.nextDue)},
               {"service", state.service},
               {"titles", state.titles == ReminderTitles::said ? "said" : "general"},
               {"refreshing", state.refreshing},
               {"lastRefresh", momentOrNull(state.lastRefresh)},
               {"keepsThisStore", service.keepsStore()}});
    return;
  }
  const HumanOutput output;
  const auto titles = state.titles == ReminderTitles::said ? "what you noted down" : "only that there is one";
  output.row("Reminders", inWords(authorization));
  output.row("Set", inWords(agreement, authorization));
  output.row("Next", state.nextDue ? humanMomentText(*state.nextDue) : "none");
  output.row("They say", titles);
  output.row("Shown by", serviceInWords(state));
  output.row("New mail", state.refreshing ? "is looked for in the background" : "is not looked for in the background");
  if (!service.keepsStore()) {
    output.row("This store", "is not the one that the service keeps in line; 'orvan reminders reconcile' does so");
  }
}

[[noreturn]] void fail(const Error& error) {
  if (error.code().category() != agentControlErrorCategory()) {
    throw;
  }
  throw CommandFailure(ExitCode::failed, sentenceOf(static_cast<AgentControlError>(error.code().value())));
}

/// Runs `act` with the service, and words what that has against it.
template <typename Act>
void withService(const CommandContext& context, Act act) {
  try {
    ReminderService service(context.session.settings());
    act(service);
  } catch (const Error& error) {
    fail(error);
  }
}

void runStatus(const CommandContext& context) {
  context.session.openForReading();
  withService(context, [&](ReminderService& service) { print(context, service); });
}

void runReconcile(const CommandContext& context) {
  withService(context, [&](ReminderService& service) {
    service.reminders().reconcile();
    service.lookAgain();
    print(context, service);
  });
}

/// What is allowed is set right here; the service does so by itself for its own store only.
void runDecide(const CommandContext& context, AuthorizationStatus status) {
  withService(context, [&](ReminderService& service) {
    AgentControl(patienceWithService)
        .setAuthorization(notificationApplicationOf(context.session.settings().store),
                          std::string{notificationDisplayName}, status);
    if (status == AuthorizationStatus::authorized) {
      service.reminders().reconcile();
    }
    service.lookAgain();
    print(context, service);
  });
}

void report(const CommandContext& context, const Json& document, const std::string& sentence) {
  if (context.output == OutputForm::json) {
    printJson(document);
  } else {
    HumanOutput{}.line(sentence);
  }
}

void runTest(const CommandContext& context) {
  withService(context, [](ReminderService& /*running*/) { AgentControl(patienceWithService).presentTest(); });
  report(context, {{"test", "shown"}},
         "A test reminder was shown. If you do not see it, look at your desktop's settings for notifications.");
}

void runTitles(const CommandContext& context, const std::string& titles) {
  const bool isSaid = titles == "said";
  withService(context, [&](ReminderService& /*running*/) {
    AgentControl(patienceWithService).setTitles(isSaid ? ReminderTitles::said : ReminderTitles::general);
  });
  report(context, {{"titles", titles}},
         isSaid ? "Reminders say what you noted down." : "Reminders say only that there is a follow-up.");
}

void runRefreshing(const CommandContext& context, const std::string& refresh) {
  const bool isOn = refresh == "on";
  withService(context, [&](ReminderService& /*running*/) { AgentControl(patienceWithService).setRefreshing(isOn); });
  report(context, {{"refreshing", isOn}},
         isOn ? "New mail and calendar entries are looked for in the background."
              : "Nothing is looked for in the background; 'orvan refresh' does it.");
}

void addChoice(CommandSet& commands, CLI::App& reminders, const CommandText& text, const char* about,
               const std::vector<std::string>& choices,
               void (*run)(const CommandContext& context, const std::string& choice)) {
  const auto choice = std::make_shared<std::string>();
  commands.addTo(reminders, text, [choice, run](const auto& context) { run(context, *choice); })
      .add_option("WHICH", *choice, about)
      ->type_name("")
      ->required()
      ->check(CLI::IsMember(choices));
}

} // namespace

void addRemindersCommands(CommandSet& commands) {
  auto& reminders = commands.add(
      {"reminders", "To be reminded", "Tell how reminders are, and allow or deny them", "orvan reminders"}, runStatus);
  commands.addTo(reminders, {"status", nullptr, "Tell how reminders are", "orvan reminders status"}, runStatus);
  commands.addTo(
      reminders,
      {"reconcile", nullptr, "Set what is missing, and withdraw what is left over", "orvan reminders reconcile"},
      runReconcile);
  commands.addTo(reminders, {"allow", nullptr, "Allow reminders", "orvan reminders allow"},
                 [](const auto& context) { runDecide(context, AuthorizationStatus::authorized); });
  commands.addTo(reminders, {"deny", nullptr, "Have no reminders shown; they stay set", "orvan reminders deny"},
                 [](const auto& context) { runDecide(context, AuthorizationStatus::denied); });
  commands.addTo(reminders, {"test", nullptr, "Show a test reminder", "orvan reminders test"}, runTest);
  addChoice(commands, reminders,
            {"titles", nullptr, "Choose what a reminder on the screen says", "orvan reminders titles general"},
            "said: what you noted down; general: only that there is one", {"said", "general"}, runTitles);
  addChoice(commands, reminders,
            {"refresh", nullptr, "Look for new mail in the background, or not", "orvan reminders refresh off"},
            "on or off", {"on", "off"}, runRefreshing);
}

} // namespace orvan
