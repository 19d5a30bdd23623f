#include "application/agent/service/agent_service.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>
#include <variant>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"

namespace orvan {
namespace {

constexpr std::size_t longestName = 255;
constexpr std::size_t longestIdentifier = 1024;
constexpr std::size_t longestTitle = 1024;
constexpr std::size_t mostUserInfo = 4096;
constexpr std::size_t mostWaiting = 1000;

[[noreturn]] void refuseAsTooLong() {
  throw Error(NotificationCenterError::refused, "taking what is too long");
}

void requireAtMost(std::size_t most, std::string_view text) {
  if (text.size() > most) {
    refuseAsTooLong();
  }
}

std::string nameIn(BusReader& reader) {
  auto name = reader.text();
  requireAtMost(longestName, name);
  return name;
}

std::string applicationIn(BusReader& reader) {
  auto application = nameIn(reader);
  if (application.empty()) {
    throw Error(NotificationCenterError::refused, "taking an application without a name");
  }
  return application;
}

std::size_t sizeOf(const UserInfo& userInfo) {
  std::size_t size = 0;
  for (const auto& [key, value] : userInfo) {
    const auto* text = std::get_if<std::string>(&value);
    size += key.size() + (text == nullptr ? sizeof value : text->size());
  }
  return size;
}

NotificationRequest requestIn(BusReader& reader) {
  auto request = agent_protocol::readRequest(reader);
  requireAtMost(longestIdentifier, request.identifier());
  requireAtMost(longestTitle, request.content().title());
  if (request.identifier().empty() || sizeOf(request.content().userInfo()) > mostUserInfo) {
    refuseAsTooLong();
  }
  return request;
}

void answerWord(BusCall& call, std::string_view word) {
  call.answer([&](BusWriter& writer) { writer.text(word); });
}

template <typename Values, typename Write>
void answerAll(BusCall& call, const char* type, const Values& values, Write write) {
  call.answer([&](BusWriter& writer) {
    writer.array(type, [&](BusWriter& elements) {
      for (const auto& value : values) {
        write(elements, value);
      }
    });
  });
}

/// What a failure means to who asked. The words are for developers.
void refuseFor(BusCall& call, const Error& error) {
  const bool isTheAskersFault = error.code() == NotificationCenterError::refused || error.code() == BusError::malformed;
  call.refuse(isTheAskersFault ? agent_protocol::refusedError : agent_protocol::unusableError, error.what());
}

void refuseFor(BusCall& call, ReminderFileTrouble trouble) {
  if (trouble == ReminderFileTrouble::locked) {
    call.refuse(agent_protocol::lockedError, "the key of the reminders cannot be read now");
  } else {
    call.refuse(agent_protocol::unusableError, "the file with the reminders cannot be used");
  }
}

std::string_view wordOf(TitleDisclosure titles) {
  return titles == TitleDisclosure::said ? "said" : "general";
}

TitleDisclosure titlesIn(BusReader& reader) {
  const auto word = reader.text();
  for (const auto titles : {TitleDisclosure::said, TitleDisclosure::general}) {
    if (word == wordOf(titles)) {
      return titles;
    }
  }
  throw Error(NotificationCenterError::refused, "setting what popups say");
}

void writeText(BusWriter& entries, const char* key, std::string_view text) {
  entries.entry(key, "s", [&](BusWriter& value) { value.text(text); });
}

void writeInstant(BusWriter& entries, const char* key, std::optional<Instant> instant) {
  if (instant) {
    entries.entry(key, "x", [&](BusWriter& value) { value.int64(instant->time_since_epoch().count()); });
  }
}

} // namespace

AgentService::AgentService(BusConnection& bus, BusForeground& foreground, const DesktopNotifications& desktop,
                           AgentStatus status)
    : bus_(bus), foreground_(foreground), desktop_(desktop), status_(std::move(status)) {
  interfaces_.push_back(bus_.exportInterface(agent_protocol::objectPath, centerInterface()));
  interfaces_.push_back(bus_.exportInterface(agent_protocol::objectPath, agentInterface()));
}

void AgentService::serve(std::shared_ptr<ReminderCenter> center) {
  center_ = std::move(center);
  trouble_.reset();
  askedForAgain_ = nullptr;
  center_->setListener(this);
  answerWaiting();
}

void AgentService::refuse(ReminderFileTrouble trouble, std::function<void()> askedForAgain) {
  trouble_ = trouble;
  askedForAgain_ = std::move(askedForAgain);
  answerWaiting();
}

void AgentService::stop() {
  if (const auto center = std::exchange(center_, nullptr)) {
    center->setListener(nullptr);
  }
  trouble_.reset();
}

void AgentService::answerWaiting() {
  for (auto& waiting : std::exchange(waiting_, {})) {
    waiting.body(waiting.call);
  }
}

bool AgentService::isOfThisUser(BusCall& call) {
  // The bus of a user's session may let root and others in.
  if (bus_.userOf(call.sender()) == geteuid()) {
    return true;
  }
  call.refuse(agent_protocol::notYoursError, "these are another user's reminders");
  return false;
}

BusInterface::Handler AgentService::forUser(std::function<void(BusCall&)> body) {
  return [this, body = std::move(body)](BusCall call) {
    if (!isOfThisUser(call)) {
      return;
    }
    if (center_ != nullptr || trouble_) {
      body(call);
      if (const auto again = center_ == nullptr ? askedForAgain_ : nullptr) {
        again();
      }
    } else if (waiting_.size() < mostWaiting) {
      waiting_.push_back({.call = std::move(call), .body = body});
    }
  };
}

BusInterface::Handler AgentService::onCenter(Body body) {
  return forUser([this, body = std::move(body)](BusCall& call) { withCenter(body, call); });
}

void AgentService::withCenter(const Body& body, BusCall& call) {
  if (const auto center = center_) {
    try {
      body(*center, call);
    } catch (const Error& error) {
      refuseFor(call, error);
    }
  } else {
    refuseFor(call, trouble_.value_or(ReminderFileTrouble::unusable));
  }
}

BusInterface AgentService::centerInterface() {
  using Center = ReminderCenter;
  const std::string request{agent_protocol::requestType};
  const std::string notification{agent_protocol::notificationType};
  BusInterface interface{agent_protocol::centerInterface};
  interface
      .method("GetSettings", "s", "s", onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                answerWord(call, agent_protocol::statusWord(center.status(applicationIn(reader))));
              }))
      .method("RequestAuthorization", "ssu", "s",
              onCenter([this](Center& center, BusCall& call) { requestAuthorization(center, call); }))
      .method("Add", "ss" + request, "", onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                const auto application = applicationIn(reader);
                const auto displayName = nameIn(reader);
                center.add(application, displayName, requestIn(reader));
                call.answer();
              }))
      .method("GetPending", "s", "a" + request, onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                answerAll(call, agent_protocol::requestType, center.pending(applicationIn(reader)),
                          agent_protocol::writeRequest);
              }))
      .method("GetDelivered", "s", "a" + notification, onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                answerAll(call, agent_protocol::notificationType, center.delivered(applicationIn(reader)),
                          agent_protocol::writeNotification);
              }))
      .method("RemovePending", "sas", "", onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                const auto application = applicationIn(reader);
                center.removePending(application, reader.texts());
                call.answer();
              }))
      .method("RemoveDelivered", "sas", "", onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                const auto application = applicationIn(reader);
                center.removeDelivered(application, reader.texts());
                call.answer();
              }))
      .method("StandInFront", "sb", "", [this](BusCall call) {
        if (isOfThisUser(call)) {
          standInFront(call);
        }
      })
      .signal("AuthorizationChanged", "ss")
      .signal("Activated", "sss");
  return interface;
}

BusInterface AgentService::agentInterface() {
  using Center = ReminderCenter;
  BusInterface interface{agent_protocol::agentInterface};
  interface
      .method("SetAuthorization", "sss", "",
              onCenter([this](Center& center, BusCall& call) { setAuthorization(center, call); }))
      .method("GetState", "", "a{sv}", forUser([this](BusCall& call) { tellState(call); }))
      .method("SetTitles", "s", "", onCenter([](Center& center, BusCall& call) {
                auto reader = call.arguments();
                center.setTitles(titlesIn(reader));
                call.answer();
              }))
      .method("SetRefreshing", "b", "",
              onCenter([this](Center& center, BusCall& call) { setRefreshing(center, call); }))
      .method("PresentTest", "", "", onCenter([](Center& center, BusCall& call) {
                center.presentTest([call = std::move(call)](std::optional<PresenterError> error) mutable {
                  if (error) {
                    call.refuse(agent_protocol::noServiceError, "no notification service showed it");
                  } else {
                    call.answer();
                  }
                });
              }));
  return interface;
}

void AgentService::requestAuthorization(ReminderCenter& center, BusCall& call) {
  auto reader = call.arguments();
  const auto application = applicationIn(reader);
  answerWord(call, agent_protocol::statusWord(center.requestAuthorization(application, nameIn(reader))));
}

void AgentService::setAuthorization(ReminderCenter& center, BusCall& call) {
  auto reader = call.arguments();
  const auto application = applicationIn(reader);
  const auto displayName = nameIn(reader);
  const auto status = agent_protocol::statusFromWord(reader.text());
  if (!status) {
    throw Error(NotificationCenterError::refused, "setting what the user decided");
  }
  center.setAuthorization(application, displayName, *status);
  call.answer();
}

void AgentService::standInFront(BusCall& call) {
  try {
    auto reader = call.arguments();
    const auto application = applicationIn(reader);
    if (reader.boolean()) {
      foreground_.comeToFront(application, call.sender());
    } else {
      foreground_.withdraw(application, call.sender());
    }
    call.answer();
  } catch (const Error& error) {
    refuseFor(call, error);
  }
}

void AgentService::setRefreshing(ReminderCenter& center, BusCall& call) {
  const bool isOn = call.arguments().boolean();
  center.setRefreshing(isOn);
  status_.refreshingWasSet(isOn);
  call.answer();
}

void AgentService::tellState(BusCall& call) const {
  try {
    call.answer([&](BusWriter& writer) { writer.array("{sv}", [&](BusWriter& entries) { writeState(entries); }); });
  } catch (const Error& error) {
    refuseFor(call, error);
  }
}

void AgentService::writeState(BusWriter& entries) const {
  writeText(entries, "version", ORVAN_VERSION);
  writeText(entries, "store", status_.store);
  if (center_ != nullptr) {
    writeText(entries, "file", "open");
    writeText(entries, "titles", wordOf(center_->titles()));
    entries.entry("refreshing", "b", [&](BusWriter& value) { value.boolean(center_->refreshing()); });
    writeInstant(entries, "nextDue", center_->nextDue());
  } else {
    writeText(entries, "file", trouble_ == ReminderFileTrouble::locked ? "locked" : "unusable");
  }
  writeText(entries, "service", desktop_.serviceName());
  entries.entry("serviceCapabilities", "as", [&](BusWriter& value) { value.texts(desktop_.capabilities()); });
  writeInstant(entries, "lastRefresh", status_.lastRefresh());
  writeInstant(entries, "runningSince", status_.runningSince);
}

void AgentService::authorizationChanged(const std::string& application, AuthorizationStatus status) {
  bus_.emit(agent_protocol::objectPath, agent_protocol::centerInterface, "AuthorizationChanged",
            [&](BusWriter& writer) { writer.text(application).text(agent_protocol::statusWord(status)); });
  status_.authorizationChanged(application, status);
}

void AgentService::reminderActivated(const std::string& application, const std::string& identifier,
                                     std::string_view action) {
  bus_.emit(agent_protocol::objectPath, agent_protocol::centerInterface, "Activated",
            [&](BusWriter& writer) { writer.text(application).text(identifier).text(action); });
}

void AgentService::reminderFileFailed(const Error& error) {
  status_.log.write("reminders.file_failed",
                    {{"category", error.code().category().name()}, {"code", std::to_string(error.code().value())}});
}

} // namespace orvan
