#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/user_calendar.h"
#include "bus_loop_test.h"
#include "recorded_desktop.h"
#include "tests/support/test_program.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::chrono_literals;

const std::string application = "org.example.Diary";

/// The program as it is installed, on a bus with a desktop that the test plays.
class AgentProgramTest : public BusLoopTest {
 protected:
  using Contents = BusWriter::Contents;

  void SetUp() override {
    BusLoopTest::SetUp();
    if (!IsSkipped()) {
      connection = BusConnection::toAddress(loop.get_executor(), bus.address());
      owners = connection->watchName(agent_protocol::serviceName, [this](const std::string& now) { owner = now; });
      changes = connection->matchSignal(
          {agent_protocol::serviceName, agent_protocol::objectPath, agent_protocol::centerInterface},
          "AuthorizationChanged", [this](const BusMessage& message) {
            auto reader = message.reader();
            reader.text();
            told.push_back(reader.text());
          });
    }
  }

  std::unique_ptr<TestProgram> program(const std::string& address) const {
    return std::make_unique<TestProgram>(
        std::vector<std::string>{AGENT_PROGRAM, "--foreground"},
        std::map<std::string, std::string>{{"DBUS_SESSION_BUS_ADDRESS", address},
                                           {"XDG_RUNTIME_DIR", folder.path() / "run"},
                                           {"XDG_DATA_HOME", folder.path() / "data"},
                                           {"HOME", folder.path()},
                                           // Nobody may look into its memory, its own leak checker neither.
                                           {"ASAN_OPTIONS", "detect_leaks=0"}},
        errors());
  }
  void startAgent() { agent = program(bus.address()); }
  void killAgent() {
    agent->signal(SIGKILL);
    agent->end();
    // The bus takes a moment to notice, and until then the next one would be the second.
    EXPECT_TRUE(runUntil([this] { return owner.empty(); }));
  }
  void startDesktop() {
    desktop.emplace(loop.get_executor(), bus.address(), std::vector<std::string>{"actions", "x-dunst-stack-tag"});
    ASSERT_TRUE(runUntil([this] { return desktop->isThere; }));
  }

  std::string errors() const { return folder.path() / "errors"; }
  std::string errorText() const {
    std::ifstream file{errors()};
    return {std::istreambuf_iterator<char>{file}, {}};
  }

  /// Also while the program is still on its way to the bus.
  BusAnswer answerTo(const char* interface, const char* method, const Contents& arguments) {
    for (const auto end = std::chrono::steady_clock::now() + 20s;;) {
      std::optional<BusAnswer> answer;
      connection->call({agent_protocol::serviceName, agent_protocol::objectPath, interface}, method, arguments, 20s,
                       [&](BusAnswer given) { answer = std::move(given); });
      EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
      // One that was killed may not have left the bus yet.
      const bool isToCome = !*answer && (answer->error().error() == BusError::noService ||
                                         answer->error().error() == BusError::serviceLeft);
      if (!isToCome || std::chrono::steady_clock::now() > end) {
        return *answer;
      }
    }
  }
  BusAnswer ask(const char* method, const Contents& arguments) {
    return answerTo(agent_protocol::centerInterface, method, [&](BusWriter& writer) {
      writer.text(application);
      arguments(writer);
    });
  }

  BusAnswer add(const std::string& identifier, std::chrono::seconds fromNow, const std::string& title) {
    const auto due = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now() + fromNow);
    return ask("Add", [&](BusWriter& writer) {
      writer.text("Diary");
      agent_protocol::writeRequest(writer, NotificationRequest(identifier, NotificationContent(title, {}),
                                                               CalendarTrigger(userCalendarComponents(due))));
    });
  }
  std::string decide(std::string_view status) {
    const auto answer = answerTo(agent_protocol::agentInterface, "SetAuthorization",
                                 [&](BusWriter& writer) { writer.text(application).text("Diary").text(status); });
    return answer ? "" : answer.error().name();
  }
  std::vector<std::string> pending() {
    std::vector<std::string> identifiers;
    if (const auto answer = ask("GetPending", [](BusWriter&) {})) {
      auto reader = answer->reader();
      reader.array(agent_protocol::requestType,
                   [&] { identifiers.push_back(agent_protocol::readRequest(reader).identifier()); });
    }
    return identifiers;
  }
  std::vector<std::string> delivered() {
    std::vector<std::string> identifiers;
    if (const auto answer = ask("GetDelivered", [](BusWriter&) {})) {
      auto reader = answer->reader();
      reader.array(agent_protocol::notificationType,
                   [&] { identifiers.push_back(agent_protocol::readNotification(reader).request().identifier()); });
    }
    return identifiers;
  }
  void remove(const char* method, std::vector<std::string> identifiers) {
    EXPECT_TRUE(ask(method, [&](BusWriter& writer) { writer.texts(identifiers); }));
  }
  std::string requestAuthorization() {
    const auto answer = ask("RequestAuthorization", [](BusWriter& writer) { writer.text("Diary").uint32(6); });
    return answer ? answer->reader().text() : answer.error().name();
  }
  /// The title of the popup at that place, once it was asked for; popups are counted from 0.
  std::string shown(std::size_t at) {
    return runUntil([&] { return desktop->shown.size() > at; }) ? desktop->shown[at].summary : "nothing";
  }

  std::unique_ptr<BusConnection> connection;
  BusSubscription owners;
  BusSubscription changes;
  std::string owner;
  std::optional<RecordedDesktop> desktop;
  std::unique_ptr<TestProgram> agent;
  std::vector<std::string> told;
};

TEST_F(AgentProgramTest, AsksTheUserOnceAndGoesByTheAnswer) {
  startDesktop();
  startAgent();
  EXPECT_EQ(requestAuthorization(), "notDetermined");
  EXPECT_EQ(requestAuthorization(), "notDetermined");
  EXPECT_EQ(shown(0), "Allow reminders?");
  EXPECT_TRUE(add("1", -1s, "Ask Ada about the draft"));
  desktop->press(desktop->shown[0].number, "not-now");
  ASSERT_TRUE(runUntil([&] { return told.size() == 1; }));
  EXPECT_EQ(requestAuthorization(), "denied");
  EXPECT_THAT(pending(), ElementsAre("1")) << "denied presents nothing and loses nothing";
  EXPECT_EQ(decide("authorized"), "");
  EXPECT_EQ(shown(1), "Ask Ada about the draft");
  EXPECT_THAT(told, ElementsAre("denied", "authorized"));
  EXPECT_THAT(desktop->shown, SizeIs(2));
  EXPECT_EQ(decide("perhaps"), agent_protocol::refusedError);
  EXPECT_THAT(errorText(), testing::Not(HasSubstr("Ada"))) << "what it says of itself names nobody";
}

TEST_F(AgentProgramTest, ShowsReplacesPostponesAndWithdraws) {
  startDesktop();
  startAgent();
  EXPECT_EQ(decide("authorized"), "");
  EXPECT_TRUE(add("1", 24h, "the first word"));
  EXPECT_TRUE(add("1", -1s, "the last word"));
  EXPECT_EQ(shown(0), "the last word");
  ASSERT_TRUE(runUntil([&] { return delivered().size() == 1; }));
  EXPECT_THAT(pending(), IsEmpty());
  desktop->press(desktop->shown[0].number, "later");
  ASSERT_TRUE(runUntil([&] { return pending().size() == 1; }));
  EXPECT_THAT(delivered(), IsEmpty());
  remove("RemovePending", {"1", "none"});
  EXPECT_THAT(pending(), IsEmpty());

  EXPECT_TRUE(add("2", -1s, "withdrawn"));
  ASSERT_TRUE(runUntil([&] { return delivered().size() == 1; }));
  const auto number = desktop->shown.back().number;
  const auto before = desktop->withdrawn.size();
  remove("RemoveDelivered", {"2"});
  ASSERT_TRUE(runUntil([&] { return desktop->withdrawn.size() > before; }));
  EXPECT_EQ(desktop->withdrawn.back(), number);
  EXPECT_FALSE(add("3", 1h, std::string(2000, 'x'))) << "nobody fills the file with one request";
}

TEST_F(AgentProgramTest, WaitsForAServiceAndShowsAnewWhatItTookAlong) {
  startAgent();
  EXPECT_EQ(decide("authorized"), "");
  EXPECT_TRUE(add("1", -1s, "kept"));
  EXPECT_THAT(pending(), ElementsAre("1"));
  EXPECT_EQ(answerTo(agent_protocol::agentInterface, "PresentTest", [](BusWriter&) {}).error().name(),
            agent_protocol::noServiceError);
  startDesktop();
  desktop->manner = RecordedDesktop::Manner::isSilent;
  EXPECT_EQ(shown(0), "kept");
  desktop.reset();
  startDesktop();
  EXPECT_EQ(shown(0), "kept");
  ASSERT_TRUE(runUntil([&] { return delivered().size() == 1; }));
  EXPECT_THAT(desktop->shown, SizeIs(1));
}

TEST_F(AgentProgramTest, AsksWhoStandsInFrontAndWaitsForNobodyWhoLeaves) {
  startDesktop();
  startAgent();
  EXPECT_EQ(decide("authorized"), "");
  auto program = BusConnection::toAddress(loop.get_executor(), bus.address());
  std::vector<std::string> asked;
  auto client = program->exportInterface(
      agent_protocol::clientPath,
      BusInterface{agent_protocol::clientInterface}.method(
          "WillPresent", "s" + std::string{agent_protocol::notificationType}, "u", [&](BusCall call) {
            auto reader = call.arguments();
            reader.text();
            asked.push_back(agent_protocol::readNotification(reader).request().content().title());
            call.answer([](BusWriter& writer) { writer.uint32(0); });
          }));
  bool isInFront = false;
  program->call(
      {agent_protocol::serviceName, agent_protocol::objectPath, agent_protocol::centerInterface}, "StandInFront",
      [](BusWriter& writer) { writer.text(application).boolean(true); }, 20s,
      [&](const BusAnswer& answer) { isInFront = answer.has_value(); });
  ASSERT_TRUE(runUntil([&] { return isInFront; }));
  EXPECT_TRUE(add("1", -1s, "seen in the window"));
  ASSERT_TRUE(runUntil([&] { return pending().empty(); }));
  EXPECT_THAT(asked, ElementsAre("seen in the window"));
  program.reset();
  EXPECT_TRUE(add("2", -1s, "nobody is in front"));
  EXPECT_EQ(shown(0), "nobody is in front");
}

TEST_F(AgentProgramTest, LosesNothingWhenItIsKilled) {
  startDesktop();
  startAgent();
  EXPECT_EQ(decide("authorized"), "");
  EXPECT_TRUE(add("later", 24h, "tomorrow"));
  desktop->manner = RecordedDesktop::Manner::isSilent;
  EXPECT_TRUE(add("now", -1s, "on its way"));
  EXPECT_EQ(shown(0), "on its way");
  killAgent();
  desktop->manner = RecordedDesktop::Manner::answers;
  startAgent();
  EXPECT_EQ(shown(1), "on its way");
  EXPECT_EQ(desktop->shown[0].tag, desktop->shown[1].tag) << "the second takes the place of the first";
  ASSERT_TRUE(runUntil([&] { return delivered().size() == 1; }));
  EXPECT_THAT(pending(), ElementsAre("later"));
  killAgent();
  startAgent();
  EXPECT_THAT(delivered(), ElementsAre("now"));
  EXPECT_THAT(desktop->shown, SizeIs(2));
  agent->signal(SIGTERM);
  EXPECT_EQ(agent->end(), 0);
}

TEST_F(AgentProgramTest, ServesOnceForEachBusAndFileAndSaysWhyItEnds) {
  const auto alone = program("unix:path=/nonexistent");
  EXPECT_EQ(alone->end(), 1);
  EXPECT_THAT(errorText(), HasSubstr("There is no session bus here"));
  std::filesystem::remove(errors());
  startAgent();
  EXPECT_THAT(pending(), IsEmpty());
  const auto second = program(bus.address());
  EXPECT_EQ(second->end(), 0);
  EXPECT_THAT(errorText(), HasSubstr("Another orvan-agent serves this session already"));
  const PrivateBus anotherBus{folder.path() / "another"};
  const auto third = program(anotherBus.address());
  EXPECT_EQ(third->end(), 1) << "two would show everything twice";
  bus.end();
  EXPECT_EQ(agent->end(), 0);
}

TEST_F(AgentProgramTest, RefusesAnotherUsersProgram) {
  if (geteuid() != 0 || access("/usr/bin/setpriv", X_OK) != 0 || access("/usr/bin/gdbus", X_OK) != 0) {
    GTEST_SKIP() << "another user's program can only be started by root";
  }
  startAgent();
  EXPECT_THAT(pending(), IsEmpty());
  for (const auto& each : {folder.path(), folder.path() / "bus"}) {
    std::filesystem::permissions(each, std::filesystem::perms::others_exec, std::filesystem::perm_options::add);
  }
  std::filesystem::permissions(folder.path() / "bus" / "bus", std::filesystem::perms::all);
  TestProgram stranger(
      {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "gdbus", "call", "--address", bus.address(),
       "--dest", agent_protocol::serviceName, "--object-path", agent_protocol::objectPath, "--method",
       "org.orvan.NotificationCenter1.GetPending", application},
      {}, errors());
  // The agent's answer needs no turn of this loop.
  EXPECT_NE(stranger.end(), 0);
  EXPECT_THAT(errorText(), HasSubstr(agent_protocol::notYoursError));
}

} // namespace
} // namespace orvan
