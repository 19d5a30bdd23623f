#include "application/agent/follow_ups/store_reminder_actions.h"

#include <boost/asio/post.hpp>
#include <chrono>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/follow_ups/store_follow_ups.h"
#include "application/process/program_start.h"

namespace orvan {
namespace {

using DoneOutcome = ReminderActions::DoneOutcome;

void writeFailure(const LogChannel& log, std::string_view event, const Error& error) {
  log.write(event, {{"category", error.code().category().name()}, {"code", std::to_string(error.code().value())}});
}

DoneOutcome outcomeOfCompleting(const std::string& followUp, const SessionSettings& settings, const LogChannel& log) {
  try {
    StoreFollowUps{settings}.complete(followUp,
                                      std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()));
    return DoneOutcome::saved;
  } catch (const Error& error) {
    writeFailure(log, "follow_up.not_completed", error);
    return DoneOutcome::notSaved;
  }
}

std::optional<std::string> personOf(const std::string& followUp, const SessionSettings& settings,
                                    const LogChannel& log) {
  try {
    return StoreFollowUps{settings}.personOf(followUp);
  } catch (const Error& error) {
    writeFailure(log, "follow_up.person_not_found", error);
    return std::nullopt;
  }
}

/// The words that name the store to another of our programs; none for the store that it would take anyway.
std::vector<std::string> storeWords(const SessionSettings& settings) {
  const auto usual = SessionSettings::defaults();
  if (settings.store == usual.store && settings.keyFile == usual.keyFile) {
    return {};
  }
  return {"--store", settings.store.native(), "--key-file", settings.keyFile.native()};
}

std::map<std::string, std::string> activationVariables(const std::string& token) {
  if (token.empty()) {
    return {};
  }
  return {{"XDG_ACTIVATION_TOKEN", token}, {"DESKTOP_STARTUP_ID", token}};
}

/// The window, or else the person's message in the mail program. Without a person only the window is of use.
bool show(const std::optional<std::string>& person, const SessionSettings& settings, const std::string& token) {
  auto words = storeWords(settings);
  const auto variables = activationVariables(token);
  if (const auto window = programCalled("orvan-desktop")) {
    if (person) {
      words.insert(words.end(), {"--person", *person});
    }
    return startByItself(*window, words, variables);
  }
  const auto commandLine = person ? programCalled("orvan") : std::nullopt;
  if (!commandLine) {
    return false;
  }
  words.insert(words.end(), {"open", *person});
  return startByItself(*commandLine, words, variables);
}

} // namespace

StoreReminderActions::StoreReminderActions(Executor executor, SessionSettings settings, LogChannel log)
    : executor_(std::move(executor)), settings_(std::move(settings)), log_(std::move(log)) {}

void StoreReminderActions::markDone(const NotificationRequest& reminder,
                                    std::move_only_function<void(DoneOutcome)> completion) {
  boost::asio::post(worker_.get(), [executor = executor_, settings = settings_, log = log_,
                                    followUp = reminder.identifier(), completion = std::move(completion)]() mutable {
    const auto outcome = outcomeOfCompleting(followUp, settings, log);
    boost::asio::post(executor, [completion = std::move(completion), outcome]() mutable { completion(outcome); });
  });
}

void StoreReminderActions::open(const NotificationRequest& reminder, const std::string& activationToken) {
  boost::asio::post(worker_.get(),
                    [settings = settings_, log = log_, followUp = reminder.identifier(), token = activationToken] {
                      if (!show(personOf(followUp, settings, log), settings, token)) {
                        log.write("follow_up.not_opened");
                      }
                    });
}

void StoreReminderActions::openAll(const std::string& activationToken) {
  boost::asio::post(worker_.get(), [settings = settings_, log = log_, token = activationToken] {
    if (!show(std::nullopt, settings, token)) {
      log.write("follow_up.not_opened");
    }
  });
}

} // namespace orvan
