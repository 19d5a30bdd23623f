#include "application/desktop/desktop_appearance.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPalette>
#include <chrono>

#include "application/desktop/qt_executor.h"
#include "application/desktop/single_instance.h"
#include "tests/support/private_bus.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

constexpr auto settings = "org.freedesktop.portal.Settings";
constexpr auto desktopPath = "/org/freedesktop/portal/desktop";

bool isDark() {
  return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

template <typename Condition>
bool waitUntil(Condition holds) {
  const auto limit = std::chrono::steady_clock::now() + 20s;
  while (!holds() && std::chrono::steady_clock::now() < limit) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
  }
  return holds();
}

TEST(Desktop, TellsHowToLookAndIsFollowedWhileTheProgramRuns) {
  const ScratchFolder folder;
  const PrivateBus daemon(folder.path());
  if (!daemon.runs()) {
    GTEST_SKIP() << "dbus-daemon is not installed";
  }
  QtLoop loop;
  const auto portal = BusConnection::toUserBus(loop.executor());
  BusInterface interface(settings);
  interface.method("Read", "ss", "v", [](BusCall call) {
    auto arguments = call.arguments();
    arguments.text();
    if (arguments.text() == "color-scheme") {
      call.answer([](BusWriter& writer) {
        writer.variant("v", [](BusWriter& outer) { outer.variant("u", [](BusWriter& inner) { inner.uint32(1); }); });
      });
    } else {
      call.refuse("org.freedesktop.portal.Error.NotFound", "no such setting");
    }
  });
  interface.signal("SettingChanged", "ssv");
  const auto exported = portal->exportInterface(desktopPath, std::move(interface));
  bool isNamed = false;
  portal->requestName("org.freedesktop.portal.Desktop", [&isNamed](const auto&) { isNamed = true; });
  ASSERT_TRUE(waitUntil([&isNamed] { return isNamed; }));

  const auto bus = BusConnection::toUserBus(loop.executor());
  const DesktopAppearance appearance(bus.get());
  EXPECT_TRUE(waitUntil(isDark));
  portal->emit(desktopPath, settings, "SettingChanged", [](BusWriter& writer) {
    writer.text("org.freedesktop.appearance").text("color-scheme");
    writer.variant("u", [](BusWriter& value) { value.uint32(0); });
  });
  EXPECT_TRUE(waitUntil([] { return !isDark(); }));
}

TEST(Desktop, ShowsOneWindowForAStore) {
  const ScratchFolder folder;
  const PrivateBus daemon(folder.path());
  if (!daemon.runs()) {
    GTEST_SKIP() << "dbus-daemon is not installed";
  }
  QtLoop loop;
  const auto firstBus = BusConnection::toUserBus(loop.executor());
  const auto secondBus = BusConnection::toUserBus(loop.executor());
  const auto thirdBus = BusConnection::toUserBus(loop.executor());
  SingleInstance first(*firstBus, "/home/robin/store.db");
  SingleInstance second(*secondBus, "/home/robin/store.db");
  SingleInstance other(*thirdBus, "/home/robin/other.db");
  std::vector<SingleInstance::Claim> claims;
  std::string shown;
  first.onShow([&shown](const std::string& person) { shown = person; });
  const auto claim = [&claims](SingleInstance& instance) {
    instance.claim("ada@hill.example", [&claims](auto answer) { claims.push_back(answer); });
    const auto count = claims.size() + 1;
    waitUntil([&] { return claims.size() == count; });
  };
  claim(first);
  claim(second);
  EXPECT_EQ(shown, "ada@hill.example");
  claim(other);
  EXPECT_EQ(claims, (std::vector{SingleInstance::Claim::first, SingleInstance::Claim::handedOver,
                                 SingleInstance::Claim::first}));
}

} // namespace
} // namespace orvan
