#include "application/desktop/window_place.h"

#include <QGuiApplication>
#include <QSettings>
#include <QSize>

namespace orvan {
namespace {

constexpr auto sizeKey = "window/size";
constexpr auto isMaximizedKey = "window/isMaximized";
constexpr auto zoomKey = "window/zoom";

QSettings settings() {
  return {QSettings::IniFormat, QSettings::UserScope, QStringLiteral("orvan"), QStringLiteral("window")};
}

void store(QQuickWindow& window) {
  auto kept = settings();
  const bool isMaximized = window.visibility() == QWindow::Maximized;
  kept.setValue(isMaximizedKey, isMaximized);
  if (!isMaximized) {
    kept.setValue(sizeKey, window.size());
  }
  kept.setValue(zoomKey, window.property("zoom"));
}

} // namespace

void rememberPlaceOf(QQuickWindow& window) {
  const auto kept = settings();
  if (const auto size = kept.value(sizeKey).toSize(); size.isValid()) {
    window.resize(size.expandedTo(window.minimumSize()));
  }
  if (const auto zoom = kept.value(zoomKey).toReal(); zoom > 0) {
    window.setProperty("zoom", zoom);
  }
  if (kept.value(isMaximizedKey).toBool()) {
    window.setWindowStates(Qt::WindowMaximized);
  }
  QObject::connect(qGuiApp, &QGuiApplication::aboutToQuit, &window, [&window] { store(window); });
}

} // namespace orvan
