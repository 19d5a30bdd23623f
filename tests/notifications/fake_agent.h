#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"

namespace orvan {

/// A reminder service that does what a test tells it, on the test's own loop.
class FakeAgent {
 public:
  explicit FakeAgent(const Executor& executor) : bus_(BusConnection::toUserBus(executor)) {
    using namespace agent_protocol;
    BusInterface center{centerInterface};
    center.method("GetSettings", "s", "s", [this](BusCall call) { tellStatus("GetSettings", std::move(call)); });
    center.method("RequestAuthorization", "ssu", "s",
                  [this](BusCall call) { tellStatus("RequestAuthorization", std::move(call)); });
    center.method("Add", "ss(ssa{sv}(iiiiii))", "", [this](BusCall call) {
      BusReader arguments = call.arguments();
      arguments.text();
      arguments.text();
      take("Add " + readRequest(arguments).identifier(), std::move(call));
    });
    center.method("GetPending", "s", "a(ssa{sv}(iiiiii))", [this](BusCall call) {
      take("GetPending", std::move(call),
           [](BusWriter& writer) { writer.array(requestType, [](BusWriter& /*none*/) {}); });
    });
    for (const char* method : {"RemovePending", "RemoveDelivered"}) {
      center.method(method, "sas", "", [this, method](BusCall call) {
        BusReader arguments = call.arguments();
        arguments.text();
        std::string heardAs = method;
        for (const auto& identifier : arguments.texts()) {
          heardAs += " " + identifier;
        }
        take(heardAs, std::move(call));
      });
    }
    center.method("StandInFront", "sb", "", [this](BusCall call) {
      BusReader arguments = call.arguments();
      arguments.text();
      front = arguments.boolean() ? call.sender() : "";
      take("StandInFront", std::move(call));
    });
    center.signal("AuthorizationChanged", "ss");
    center_ = bus_->exportInterface(objectPath, std::move(center));
    bus_->requestName(serviceName, [this](auto result) { named = result.has_value(); });
  }

  /// Leaves without a word.
  ~FakeAgent() { bus_.reset(); }
  FakeAgent(const FakeAgent&) = delete;
  FakeAgent& operator=(const FakeAgent&) = delete;

  BusConnection& bus() { return *bus_; }

  void exportAgentInterface(BusInterface interface) {
    agent_ = bus_->exportInterface(agent_protocol::objectPath, std::move(interface));
  }

  void decide(const std::string& application, const std::string& word) {
    status = word;
    bus_->emit(agent_protocol::objectPath, agent_protocol::centerInterface, "AuthorizationChanged",
               [&](BusWriter& writer) { writer.text(application).text(word); });
  }

  bool named = false;
  bool mute = false;
  std::string status = "notDetermined";
  std::string front;
  std::vector<std::string> heard;

 private:
  void tellStatus(const char* method, BusCall call) {
    take(method, std::move(call), [this](BusWriter& writer) { writer.text(status); });
  }

  void take(std::string what, BusCall call, const BusWriter::Contents& answer = [](BusWriter& /*nothing*/) {}) {
    heard.push_back(std::move(what));
    if (mute) {
      kept_.push_back(std::move(call));
    } else {
      call.answer(answer);
    }
  }

  std::unique_ptr<BusConnection> bus_;
  std::vector<BusCall> kept_;
  BusSubscription center_;
  BusSubscription agent_;
};

} // namespace orvan
