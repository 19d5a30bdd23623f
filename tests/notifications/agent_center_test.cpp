#include <algorithm>
#include <cstdlib>
#include <future>
#include <thread>

#include "../follow_up/follow_up_store_test.h"
#include "OrvanNotifications/agent_control.h"
#include "OrvanNotifications/agent_control_error.h"
#include "OrvanNotifications/agent_notification_center.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"
#include "fake_agent.h"
#include "tests/support/private_bus.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr auto application = "org.example.Diary";

/// The centre of the reminder service, with a service that the test plays on its own loop. The centre has a thread.
class AgentCenterTest : public FollowUpStoreTest {
 protected:
  void SetUp() override {
    if (!daemon_.runs()) {
      GTEST_SKIP() << "dbus-daemon is not installed";
    }
    startAgent();
    makeCenter(10s);
  }

  void TearDown() override {
    scheduler.stopAuthorizationRecovery();
    NotificationCenter::setCurrent(nullptr);
    agent.reset();
    agentCenter.reset();
    settle();
  }

  void makeCenter(std::chrono::milliseconds callTimeout) {
    AgentCenterOptions options{.application = application, .displayName = "Diary", .callTimeout = callTimeout};
    options.agentReturned = [this] { ++returns; };
    agentCenter = AgentNotificationCenter::make(std::move(options));
    NotificationCenter::setCurrent(agentCenter);
  }

  void startAgent() {
    agent = std::make_unique<FakeAgent>(loop.get_executor());
    runUntil([this] { return agent->named; });
  }

  /// Fails the test when `happened` does not come true in ten seconds.
  template <typename Condition>
  void runUntil(Condition happened) {
    const auto end = std::chrono::steady_clock::now() + 10s;
    while (!happened() && std::chrono::steady_clock::now() < end) {
      loop.restart();
      loop.run_one_for(10ms);
    }
    EXPECT_TRUE(happened());
  }

  /// What `task` gives while the service has its turns.
  template <typename Result>
  Result answered(Task<Result> task) {
    auto future = boost::asio::co_spawn(loop, std::move(task), boost::asio::use_future);
    runUntil([&] { return isReady(future); });
    return future.get();
  }

  template <typename Action>
  void whileServed(Action action) {
    auto done = std::async(std::launch::async, std::move(action));
    runUntil([&] { return isReady(done); });
    done.get();
  }

  AuthorizationStatus status() { return answered(statusIn(agentCenter)); }

  static Task<AuthorizationStatus> statusIn(std::shared_ptr<NotificationCenter> center) {
    const auto settings = co_await center->notificationSettings();
    co_return settings.authorizationStatus();
  }

  std::error_code addingFails(const std::string& identifier) {
    return faultOf([&] { return answered(agentCenter->added(request(identifier, clock->now()))), 0; });
  }

  long timesHeard(const std::string& what) const { return std::ranges::count(agent->heard, what); }

  void endBus() { daemon_.end(); }

  std::unique_ptr<FakeAgent> agent;
  std::shared_ptr<AgentNotificationCenter> agentCenter;
  std::atomic<int> returns = 0;

 private:
  ScratchFolder busFolder_;
  PrivateBus daemon_{busFolder_.path()};
};

TEST_F(AgentCenterTest, ASilentServiceHoldsNeitherARegistrationNorAPassNorDraining) {
  makeCenter(500ms);
  agent->status = "authorized";
  EXPECT_EQ(status(), AuthorizationStatus::authorized);
  agent->mute = true;
  schedule("f-1", inOneHour());
  schedule("f-2", inOneHour(), "p2");
  // The clock stands: no budget of the scheduler's own ends any of this.
  EXPECT_EQ(answered(scheduler.registerReminder("abc", "p1", "Call", inOneHour())),
            EffectReasonToken::reminderNotRegistered);
  runUntil([&] { return agent->heard.size() == 3; });
  EXPECT_EQ(addingFails("x"), NotificationCenterError::unavailable);
  answered(scheduler.reconcileReminders());
  answered(scheduler.stopAuthorizationRecoveryAndDrain());
  EXPECT_THAT(agent->heard, ElementsAre("GetSettings", "GetSettings", "GetSettings"))
      << "answered, in vain, and to find out when it speaks again; nobody else waits";
  EXPECT_EQ(status(), AuthorizationStatus::authorized) << "as it was learned";

  agent->mute = false;
  agent.reset();
  startAgent();
  runUntil([&] { return returns == 1; });
  EXPECT_EQ(addingFails("x"), std::error_code{});
}

TEST_F(AgentCenterTest, AnAbsentServiceOrAnUnknownWordIsNotTheUsersNo) {
  agent->status = "ephemeral";
  EXPECT_EQ(status(), AuthorizationStatus::notDetermined);
  agent->status = "provisional";
  EXPECT_EQ(status(), AuthorizationStatus::provisional);
  agent->status = "ephemeral";
  EXPECT_EQ(status(), AuthorizationStatus::provisional);
  EXPECT_FALSE(answered(agentCenter->authorizationGranted(AuthorizationOptions::alert)));
  agent.reset();
  EXPECT_EQ(status(), AuthorizationStatus::provisional);
  EXPECT_EQ(addingFails("x"), NotificationCenterError::unavailable);
  EXPECT_EQ(addingFails("\xff"), NotificationCenterError::refused);
  EXPECT_EQ(answered(notifications->readPendingRequestKeys()), std::nullopt);
}

TEST_F(AgentCenterTest, AQuestionToTheUserOutlivesTheServiceThatPutItButNotByMuch) {
  auto granted = start(agentCenter->authorizationGranted(AuthorizationOptions::alert));
  auto joined = start(agentCenter->authorizationGranted(AuthorizationOptions::alert));
  runUntil([&] { return timesHeard("RequestAuthorization") == 2; });
  agent.reset();
  startAgent();
  runUntil([&] { return timesHeard("RequestAuthorization") == 1; });
  agent->decide("org.example.Other", "denied");
  agent->decide(application, "authorized");
  agent->decide(application, "denied");
  runUntil([&] { return isReady(granted) && isReady(joined); });
  EXPECT_TRUE(granted.get());
  EXPECT_TRUE(joined.get());
  runUntil([&] { return returns == 1; });

  makeCenter(500ms);
  agent->status = "notDetermined";
  auto left = start(agentCenter->authorizationGranted(AuthorizationOptions::alert));
  runUntil([&] { return timesHeard("RequestAuthorization") == 2; });
  agent.reset();
  runUntil([&] { return isReady(left); });
  EXPECT_EQ(faultOf([&] { return left.get(); }), NotificationCenterError::unavailable);
}

TEST_F(AgentCenterTest, RemovalsWaitForTheServiceAndTheEndOfTheProgramForThem) {
  EXPECT_EQ(status(), AuthorizationStatus::notDetermined);
  agent.reset();
  agentCenter->removePendingNotificationRequests({"a"});
  agentCenter->removePendingNotificationRequests({"b", "c"});
  agentCenter->removeDeliveredNotifications({"d"});
  whileServed([&] { EXPECT_FALSE(agentCenter->flush(10s)) << "it cannot be started"; });
  startAgent();
  runUntil([&] { return returns == 1; });
  EXPECT_EQ(addingFails("b"), std::error_code{});
  agentCenter->removeDeliveredNotifications({"e"});
  whileServed([&] {
    NotificationCenter::setCurrent(nullptr);
    agentCenter.reset();
  });
  EXPECT_THAT(agent->heard, testing::IsSupersetOf({"RemoveDelivered d", "Add b", "RemoveDelivered e"}));
  std::string removed;
  for (const auto& what : agent->heard) {
    removed += what.starts_with("RemovePending") ? what.substr(13) : "";
    EXPECT_TRUE(what != "Add b" || removed == " a b c") << removed;
  }
  EXPECT_EQ(removed, " a b c");
}

/// Suppresses what it is asked of, from a thread of its own.
class SuppressingDelegate final : public NotificationCenterDelegate {
 public:
  void willPresent(std::shared_ptr<NotificationCenter> /*center*/, Notification notification,
                   std::function<void(PresentationOptions)> completionHandler) override {
    asked = notification.request().identifier();
    std::jthread{[handler = std::move(completionHandler)] {
      handler(PresentationOptions{});
      handler(PresentationOptions::banner);
    }};
  }
  std::string asked;
};

TEST_F(AgentCenterTest, WhoStandsInFrontIsAskedAlsoByAServiceThatHasReturned) {
  auto delegate = std::make_shared<SuppressingDelegate>();
  agentCenter->setDelegate(delegate);
  runUntil([&] { return !agent->front.empty(); });
  agent.reset();
  startAgent();
  runUntil([&] { return !agent->front.empty(); });
  const auto ask = [&] {
    std::optional<std::uint32_t> options;
    const auto write = [&](BusWriter& writer) {
      writer.text(application);
      agent_protocol::writeNotification(writer, Notification{clock->now(), request("f-1", clock->now())});
    };
    agent->bus().call({agent->front, agent_protocol::clientPath, agent_protocol::clientInterface}, "WillPresent", write,
                      10s, [&](const BusAnswer& answer) { options = answer->reader().uint32(); });
    runUntil([&] { return options.has_value(); });
    return options;
  };
  EXPECT_EQ(ask(), 0U);
  EXPECT_EQ(delegate->asked, "f-1");
  delegate.reset();
  EXPECT_EQ(ask(), (PresentationOptions::banner | PresentationOptions::sound).rawValue());
  runUntil([&] { return agent->front.empty(); });
}

TEST_F(AgentCenterTest, ToolsLearnTheStateOrWhyTheyDoNot) {
  BusInterface interface{agent_protocol::agentInterface};
  interface.method("GetState", "", "a{sv}", [](BusCall call) {
    call.answer([](BusWriter& writer) {
      writer.array("{sv}", [](BusWriter& entries) {
        entries.entry("version", "s", [](BusWriter& value) { value.text("1.2"); });
        entries.entry("file", "s", [](BusWriter& value) { value.text("locked"); });
        entries.entry("serviceCapabilities", "as", [](BusWriter& value) { value.texts({{"body"}}); });
        entries.entry("nextDue", "x", [](BusWriter& value) { value.int64(5); });
        entries.entry("later", "d", [](BusWriter& value) { value.real(5); });
      });
    });
  });
  interface.method("PresentTest", "", "", [](BusCall call) { call.refuse(agent_protocol::noServiceError, ""); });
  interface.method("SetTitles", "s", "", [](const BusCall& /*left*/) {});
  agent->exportAgentInterface(std::move(interface));
  const AgentControl control{10s};
  whileServed([&] {
    const AgentState state = control.state();
    EXPECT_EQ(state.version, "1.2");
    EXPECT_EQ(state.file, AgentFile::locked);
    EXPECT_THAT(state.serviceCapabilities, ElementsAre("body"));
    EXPECT_EQ(state.nextDue, Instant{5us});
    EXPECT_EQ(state.lastRefresh, std::nullopt);
    const auto test = [&] { return control.presentTest(), 0; };
    EXPECT_EQ(faultOf(test), AgentControlError::noNotificationService);
    EXPECT_EQ(faultOf([&] { return control.setTitles(ReminderTitles::general), 0; }), AgentControlError::failed);
  });
  EXPECT_EQ(faultOf([&] { return AgentControl{20ms}.state(); }), AgentControlError::tooSlow) << "it has no turn";
  agent.reset();
  EXPECT_EQ(faultOf([&] { return control.state(); }), AgentControlError::noAgent);
  endBus();
  EXPECT_EQ(faultOf([&] { return control.state(); }), AgentControlError::noBus);
  EXPECT_EQ(addingFails("x"), NotificationCenterError::unavailable);
}

} // namespace
} // namespace orvan
