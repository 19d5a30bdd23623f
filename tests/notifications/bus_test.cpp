#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <optional>
#include <vector>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "tests/support/private_bus.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using std::chrono::milliseconds;
using namespace agent_protocol;

const BusTarget echo{"org.example.Echo", "/echo", "org.example.Echo1"};
constexpr milliseconds longEnough{10'000};

/// Two connections to one bus, driven by one loop.
class BusTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!daemon_.runs()) {
      GTEST_SKIP() << "dbus-daemon is not installed";
    }
    service = BusConnection::toUserBus(loop.get_executor());
    client = BusConnection::toAddress(loop.get_executor(), daemon_.address());
    service->requestName(echo.service(), [this](auto result) { named_ = result.has_value(); });
    runUntil([this] { return named_; });
  }

  /// Fails the test when `happened` does not come true in ten seconds.
  template <typename Condition>
  void runUntil(Condition happened) {
    const auto end = std::chrono::steady_clock::now() + longEnough;
    while (!happened() && std::chrono::steady_clock::now() < end) {
      loop.restart();
      loop.run_one_for(milliseconds{100});
    }
    EXPECT_TRUE(happened());
  }

  /// What a call of Ask ends with.
  std::optional<BusAnswer> ask(milliseconds timeout = longEnough) {
    std::optional<BusAnswer> answer;
    client->call(
        echo, "Ask", [](BusWriter& writer) { writer.text("x"); }, timeout,
        [&](BusAnswer given) { answer.emplace(std::move(given)); });
    runUntil([&] { return answer.has_value(); });
    return answer;
  }

  std::string failureOf(milliseconds timeout = longEnough) {
    const auto answer = ask(timeout);
    if (!answer.has_value() || answer->has_value()) {
      return "";
    }
    return make_error_code(answer->error().error()).message() + "|" + answer->error().name();
  }

  void endBus() { daemon_.end(); }

  boost::asio::io_context loop;
  std::unique_ptr<BusConnection> service;
  std::unique_ptr<BusConnection> client;

 private:
  ScratchFolder folder_;
  PrivateBus daemon_{folder_.path()};
  bool named_ = false;
};

TEST_F(BusTest, ARequestComesThroughAsItWasAndNonsenseIsRefused) {
  const NotificationRequest sent{
      "3:abc|2:p1",
      NotificationContent{"Ring Åsa 🎈",
                          UserInfo{{"b", true}, {"d", 0.5}, {"s", std::string{}}, {"x", std::int64_t{-1} << 40}}},
      CalendarTrigger{CalendarComponents{2026, 2, 30, 23, 59, 59}}};
  std::optional<NotificationRequest> arrived;
  std::optional<uid_t> user;
  auto subscription = service->exportInterface(
      echo.path(), BusInterface{echo.interface()}.method("Ask", requestType, notificationType, [&](BusCall call) {
        BusReader reader = call.arguments();
        arrived = readRequest(reader);
        user = service->userOf(call.sender());
        call.answer([&](BusWriter& writer) { writeNotification(writer, Notification{latestInstant, *arrived}); });
      }));
  std::optional<Notification> returned;
  client->call(
      echo, "Ask", [&](BusWriter& writer) { writeRequest(writer, sent); }, longEnough,
      [&](const BusAnswer& answer) {
        ASSERT_TRUE(answer.has_value());
        BusReader reader = answer->reader();
        returned = readNotification(reader);
      });
  runUntil([&] { return returned.has_value(); });
  EXPECT_EQ(arrived, sent);
  EXPECT_EQ(returned, (Notification{latestInstant, sent}));
  EXPECT_EQ(user, geteuid());

  EXPECT_EQ(failureOf(), "the service answered with an error|org.freedesktop.DBus.Error.InvalidArgs");
  for (const char* text : {"\xff", "\xc0\x80", "\xed\xa0\x80", "\xe2\x82", "\xf4\x90\x80\x80"}) {
    const auto write = [&](BusWriter& writer) { writer.text(text); };
    EXPECT_EQ(faultOf([&] { return client->call(echo, "Ask", write, longEnough, [](BusAnswer) {}), 0; }),
              BusError::malformed);
  }
}

TEST_F(BusTest, TellsApartHowACallCanFail) {
  std::vector<BusCall> kept;
  auto subscription = service->exportInterface(
      echo.path(),
      BusInterface{echo.interface()}.method("Ask", "s", "", [&](BusCall call) { kept.push_back(std::move(call)); }));
  std::vector<std::string> owners;
  auto watch = client->watchName(echo.service(), [&](const std::string& owner) { owners.push_back(owner); });

  EXPECT_EQ(failureOf(milliseconds{20}), "no answer came in time|");
  client->call(echo, "Ask", [](BusWriter& writer) { writer.text("x"); }, longEnough, [](BusAnswer) {});
  runUntil([&] { return kept.size() == 2; });
  kept.back().refuse(refusedError, "");
  kept.front().answer(); // Nobody waits for it any more.
  kept.clear();
  subscription = {};
  subscription = service->exportInterface(
      "/echo", BusInterface{echo.interface()}.method("Ask", "s", "", [](const BusCall& /*dropped*/) {}));
  EXPECT_EQ(failureOf(), "the service answered with an error|org.freedesktop.DBus.Error.Failed");

  subscription = {};
  subscription = service->exportInterface(
      "/echo",
      BusInterface{echo.interface()}.method("Ask", "s", "", [&](const BusCall& /*left*/) { service.reset(); }));
  EXPECT_EQ(failureOf(), "the service left without an answer|org.freedesktop.DBus.Error.NoReply");
  runUntil([&] { return owners.size() == 2; });
  EXPECT_EQ(owners.back(), "");
  EXPECT_EQ(failureOf(), "the service is not there and could not be started|org.freedesktop.DBus.Error.ServiceUnknown");

  bool lost = false;
  client->onLost([&] { lost = true; });
  endBus();
  runUntil([&] { return lost; });
  EXPECT_EQ(failureOf(), "the connection to the bus has been lost|");
}

} // namespace
} // namespace orvan
