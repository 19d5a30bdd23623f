#pragma once

#include <QObject>
#include <QtQmlIntegration>
#include <memory>
#include <string>
#include <vector>

#include "OrvanPlatform/bus/bus_connection.h"

namespace orvan {

/// What the user told their desktop about how programs should look: light or dark, with how much contrast, how large
/// text is, and whether things may move. Asks the desktop's settings portal, and follows it while the program runs;
/// where there is none, everything stays as Qt has it. Puts colours for a dark desktop into the application's palette.
/// Belongs to Qt's thread.
///
/// The portal looks into this process to learn who asks, so the first question must be answered before the process
/// closes itself to others: settled() tells when.
class DesktopAppearance : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")
  Q_PROPERTY(double textScale READ textScale NOTIFY changed FINAL)
  Q_PROPERTY(bool hasHighContrast READ hasHighContrast NOTIFY changed FINAL)
  Q_PROPERTY(bool reducesMotion READ reducesMotion NOTIFY changed FINAL)

 public:
  /// Without a bus, nothing is asked. `bus` must outlive this.
  explicit DesktopAppearance(BusConnection* bus, QObject* parent = nullptr);

  double textScale() const noexcept { return textScale_; }
  bool hasHighContrast() const noexcept { return hasHighContrast_; }
  bool reducesMotion() const noexcept { return reducesMotion_; }

 Q_SIGNALS:
  void changed();
  /// Once, from the event loop: the desktop has told how light it is, or will not do so soon.
  void settled();

 private:
  void read(const std::string& group, const std::string& name);
  void settle();
  void take(const std::string& group, const std::string& name, const BusMessage& message);
  void setDark(bool isDark);

  BusConnection* bus_;
  double textScale_ = 1;
  bool hasHighContrast_ = false;
  bool reducesMotion_ = false;
  bool isSettled_ = false;
  std::vector<BusSubscription> subscriptions_;
  /// For answers that come when this is gone.
  std::shared_ptr<bool> isThere_ = std::make_shared<bool>(true);
};

} // namespace orvan
