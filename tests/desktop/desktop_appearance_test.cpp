#include "application/desktop/desktop_appearance.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPalette>
#include <QQmlComponent>
#include <QQmlEngine>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>

#include "OrvanRelationshipAttention/ui/attention_views.h"
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

QColor mixed(const QColor& above, const QColor& below, float opacity) {
  const auto part = [opacity](float one, float other) { return one * opacity + other * (1 - opacity); };
  return QColor::fromRgbF(part(above.redF(), below.redF()), part(above.greenF(), below.greenF()),
                          part(above.blueF(), below.blueF()));
}

/// As the guidelines for accessible web pages (WCAG 2) define them.
double luminance(const QColor& color) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

/// Of all text in the colours of the views, on all that it stands on in the window.
double leastContrast() {
  QQmlEngine engine;
  addAttentionViews(engine);
  QQmlComponent component(&engine);
  component.setData("import OrvanRelationshipAttention\nAttentionLook {}", {});
  const std::unique_ptr<QObject> look(component.create());
  const auto of = [&look](const char* name) { return look->property(name).value<QColor>(); };
  const auto base = QGuiApplication::palette().color(QPalette::Base);
  const auto chosenRow = mixed(of("accent"), of("background"), isDark() ? 0.18F : 0.1F);
  double least = 21;
  for (const auto& ground : {of("background"), base, chosenRow, of("background").lighter(isDark() ? 125 : 100)}) {
    for (const auto& ink : {of("text"), of("accent"), of("secondaryText")}) {
      least = std::min(least, contrast(mixed(ink, ground, ink.alphaF()), ground));
    }
  }
  return least;
}

constexpr double enoughContrast = 4.5;

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
  EXPECT_GE(leastContrast(), enoughContrast);
  const auto change = [&portal](const char* setting, std::uint32_t to) {
    portal->emit(desktopPath, settings, "SettingChanged", [setting, to](BusWriter& writer) {
      writer.text("org.freedesktop.appearance").text(setting);
      writer.variant("u", [to](BusWriter& value) { value.uint32(to); });
    });
  };
  EXPECT_FALSE(appearance.hasHighContrast());
  change("contrast", 1);
  EXPECT_TRUE(waitUntil([&appearance] { return appearance.hasHighContrast(); }));
  change("color-scheme", 0);
  EXPECT_TRUE(waitUntil([] { return !isDark(); }));
  EXPECT_GE(leastContrast(), enoughContrast);
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
  SingleInstance::Wish shown;
  first.onShow([&shown](const SingleInstance::Wish& wish) { shown = wish; });
  const auto claim = [&claims](SingleInstance& instance) {
    instance.claim({"ada@hill.example", "leave"}, [&claims](auto answer) { claims.push_back(answer); });
    const auto count = claims.size() + 1;
    waitUntil([&] { return claims.size() == count; });
  };
  claim(first);
  claim(second);
  EXPECT_EQ(shown.person, "ada@hill.example");
  EXPECT_EQ(shown.activationToken, "leave");
  claim(other);
  EXPECT_EQ(claims, (std::vector{SingleInstance::Claim::first, SingleInstance::Claim::handedOver,
                                 SingleInstance::Claim::first}));
}

} // namespace
} // namespace orvan
