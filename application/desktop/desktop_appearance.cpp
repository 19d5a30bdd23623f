#include "application/desktop/desktop_appearance.h"

#include <systemd/sd-bus.h>

#include <QGuiApplication>
#include <QPalette>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

namespace orvan {
namespace {

const BusTarget& portal() {
  static const BusTarget target("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                "org.freedesktop.portal.Settings");
  return target;
}

using Setting = std::pair<const char*, const char*>;
constexpr Setting colourScheme{"org.freedesktop.appearance", "color-scheme"};
constexpr Setting contrast{"org.freedesktop.appearance", "contrast"};
constexpr Setting textScaling{"org.gnome.desktop.interface", "text-scaling-factor"};
constexpr Setting animations{"org.gnome.desktop.interface", "enable-animations"};

/// The portal's values of the scheme: none, dark, light.
constexpr std::uint32_t prefersDark = 1;
/// Of contrast: none, high.
constexpr std::uint32_t prefersContrast = 1;

QPalette darkPalette() {
  const QColor window(0x24, 0x24, 0x28);
  const QColor base(0x1c, 0x1c, 0x20);
  const QColor text(0xe8, 0xe8, 0xea);
  // One by one: what a constructor is given, the application takes for unset.
  QPalette palette;
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::Button, window.lighter(125));
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::BrightText, Qt::white);
  palette.setColor(QPalette::Highlight, QColor(0x3a, 0x6e, 0xa5));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(0xa0, 0xa0, 0xa8));
  palette.setColor(QPalette::Link, QColor(0x7a, 0xb5, 0xee));
  palette.setColor(QPalette::ToolTipBase, window.lighter(130));
  palette.setColor(QPalette::ToolTipText, text);
  return palette;
}

/// Goes into what a variant holds, and into the variant in that: an answer has two, a signal one.
char typeInside(sd_bus_message* message) {
  char type = 0;
  const char* contents = nullptr;
  while (sd_bus_message_peek_type(message, &type, &contents) > 0 && type == SD_BUS_TYPE_VARIANT) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents) < 0) {
      return 0;
    }
  }
  return type;
}

} // namespace

DesktopAppearance::DesktopAppearance(BusConnection* bus, QObject* parent) : QObject(parent), bus_(bus) {
  using namespace std::chrono_literals;
  // A desktop that starts its portal only now is not waited for.
  QTimer::singleShot(bus_ == nullptr ? 0ms : 300ms, this, &DesktopAppearance::settle);
  if (bus_ == nullptr) {
    return;
  }
  subscriptions_.push_back(bus_->matchSignal(portal(), "SettingChanged", [this](const BusMessage& message) {
    auto reader = message.reader();
    const auto group = reader.text();
    const auto name = reader.text();
    take(group, name, message);
  }));
  for (const auto& [group, name] : {textScaling, animations, contrast, colourScheme}) {
    read(group, name);
  }
}

void DesktopAppearance::read(const std::string& group, const std::string& name) {
  using namespace std::chrono_literals;
  const auto arguments = [&](BusWriter& writer) { writer.text(group).text(name); };
  bus_->call(portal(), "Read", arguments, 5s,
             [this, group, name, alive = std::weak_ptr(isThere_)](const BusAnswer& answer) {
               if (alive.expired()) {
                 return;
               }
               if (answer) {
                 take(group, name, *answer);
               }
               if (name == colourScheme.second) {
                 settle();
               }
             });
}

void DesktopAppearance::settle() {
  if (!std::exchange(isSettled_, true)) {
    Q_EMIT settled();
  }
}

void DesktopAppearance::take(const std::string& group, const std::string& name, const BusMessage& message) {
  const auto type = typeInside(message.handle());
  auto reader = message.reader();
  if (group == colourScheme.first && name == colourScheme.second && type == SD_BUS_TYPE_UINT32) {
    setDark(reader.uint32() == prefersDark);
  } else if (group == textScaling.first && name == textScaling.second && type == SD_BUS_TYPE_DOUBLE) {
    constexpr double smallest = 0.5;
    constexpr double largest = 3;
    textScale_ = std::clamp(reader.real(), smallest, largest);
    Q_EMIT changed();
  } else if (group == contrast.first && name == contrast.second && type == SD_BUS_TYPE_UINT32) {
    hasHighContrast_ = reader.uint32() == prefersContrast;
    Q_EMIT changed();
  } else if (group == animations.first && name == animations.second && type == SD_BUS_TYPE_BOOLEAN) {
    reducesMotion_ = !reader.boolean();
    Q_EMIT changed();
  }
}

void DesktopAppearance::setDark(bool isDark) {
  // A platform theme that is dark by itself has colours of its own.
  constexpr int middle = 128;
  const bool isDarkNow = QGuiApplication::palette().color(QPalette::Window).lightness() < middle;
  if (isDark != isDarkNow) {
    QGuiApplication::setPalette(isDark ? darkPalette() : QPalette());
  }
}

} // namespace orvan
