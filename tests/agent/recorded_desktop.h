#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/bus/bus_connection.h"

namespace orvan {

/// A desktop's notification service that shows nothing: it keeps what it was asked for, and a test plays the user.
class RecordedDesktop {
 public:
  struct Shown {
    std::uint32_t number = 0;
    std::uint32_t replaces = 0;
    std::string summary;
    std::string body;
    std::vector<std::string> actions;
    std::string tag;
  };
  enum class Manner { answers, isSilent, answersNonsense, refuses };

  RecordedDesktop(Executor executor, const std::string& address, std::vector<std::string> capabilities)
      : bus_(BusConnection::toAddress(std::move(executor), address)), capabilities_(std::move(capabilities)) {
    interface_ = bus_->exportInterface(path, interface());
    bus_->requestName(name, [this](const auto& result) { isThere = result == NameRequest::owned; });
  }

  bool isThere = false;

  Manner manner = Manner::answers;
  std::vector<Shown> shown;
  std::vector<std::uint32_t> withdrawn;
  /// Told before the answer, as some services do.
  std::function<void(const Shown&)> onShow;

  void press(std::uint32_t number, const std::string& action, const std::string& token = {}) {
    if (!token.empty()) {
      bus_->emit(path, name, "ActivationToken", [&](BusWriter& writer) { writer.uint32(number).text(token); });
    }
    bus_->emit(path, name, "ActionInvoked", [&](BusWriter& writer) { writer.uint32(number).text(action); });
  }
  void close(std::uint32_t number) {
    constexpr std::uint32_t byTheUser = 2;
    bus_->emit(path, name, "NotificationClosed", [&](BusWriter& writer) { writer.uint32(number).uint32(byTheUser); });
  }

 private:
  static constexpr auto name = "org.freedesktop.Notifications";
  static constexpr auto path = "/org/freedesktop/Notifications";

  BusInterface interface() {
    BusInterface interface{name};
    interface
        .method("GetCapabilities", "", "as",
                [this](BusCall call) { call.answer([&](BusWriter& writer) { writer.texts(capabilities_); }); })
        .method("GetServerInformation", "", "ssss",
                [](BusCall call) {
                  call.answer([](BusWriter& writer) { writer.text("Recorded").text("").text("").text(""); });
                })
        .method("Notify", "susssasa{sv}i", "u", [this](BusCall call) { take(std::move(call)); })
        .method("CloseNotification", "u", "", [this](BusCall call) {
          withdrawn.push_back(call.arguments().uint32());
          call.answer();
        })
        .signal("ActionInvoked", "us")
        .signal("ActivationToken", "us")
        .signal("NotificationClosed", "uu");
    return interface;
  }

  void take(BusCall call) {
    auto reader = call.arguments();
    Shown popup;
    reader.text();
    popup.replaces = reader.uint32();
    reader.text();
    popup.summary = reader.text();
    popup.body = reader.text();
    popup.actions = reader.texts();
    reader.entries([&](const std::string& key, std::string_view type) {
      if (key == "x-dunst-stack-tag" && type == "s") {
        popup.tag = reader.text();
      }
    });
    popup.number = popup.replaces != 0 ? popup.replaces : ++lastNumber_;
    shown.push_back(popup);
    if (onShow) {
      onShow(popup);
    }
    answer(std::move(call), popup.number);
  }

  void answer(BusCall call, std::uint32_t number) {
    switch (manner) {
      case Manner::answers:
        return call.answer([&](BusWriter& writer) { writer.uint32(number); });
      case Manner::answersNonsense:
        return call.answer([](BusWriter& writer) { writer.uint32(0); });
      case Manner::refuses:
        return call.refuse("org.freedesktop.Notifications.Error.ExcessNotificationGeneration", "");
      case Manner::isSilent:
        unanswered_.push_back(std::move(call));
    }
  }

  /// Outlives the connection, so that nobody is answered when the service goes.
  std::vector<BusCall> unanswered_;
  std::unique_ptr<BusConnection> bus_;
  BusSubscription interface_;
  std::vector<std::string> capabilities_;
  std::uint32_t lastNumber_ = 0;
};

} // namespace orvan
