#pragma once

#include <QVariantList>
#include <string>

#include "application/desktop/settings_part.h"

namespace orvan {

/// The mail addresses that are the user's own. Belongs to Qt's thread.
class OwnAddressesModel : public orvan::SettingsPart {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  /// Of maps with "address" and "detail".
  Q_PROPERTY(QVariantList addresses READ addresses NOTIFY changed FINAL)

 public:
  using SettingsPart::SettingsPart;

  const QVariantList& addresses() const noexcept { return addresses_; }

  // What was read stands on whose the addresses are: mail and calendars are read again after either.
  Q_INVOKABLE void add(const QString& address);
  /// The last one stays.
  Q_INVOKABLE void remove(const QString& address);

 Q_SIGNALS:
  void changed();
  /// Sources will be read from their beginning.
  void mustBeReadAgain();

 protected:
  Task<void> refresh() override;

 private:
  Task<void> addNormal(std::string address);
  Task<void> removeNormal(std::string address);

  QVariantList addresses_;
};

} // namespace orvan
