#pragma once

#include <QVariantList>
#include <vector>

#include "application/corrections/hiding.h"
#include "application/desktop/settings_part.h"

namespace orvan {

/// The people, conversations and sources that the user keeps from being shown. Belongs to Qt's thread.
class HiddenThingsModel : public orvan::SettingsPart {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  /// Of maps with "key", "name" and "since", the latest first.
  Q_PROPERTY(QVariantList things READ things NOTIFY changed FINAL)

 public:
  using SettingsPart::SettingsPart;

  const QVariantList& things() const noexcept { return things_; }

  Q_INVOKABLE void showAgain(const QString& key);

 Q_SIGNALS:
  void changed();

 protected:
  Task<void> refresh() override;

 private:
  Task<void> unhide(HiddenThing thing);

  std::vector<HiddenThing> hidden_;
  QVariantList things_;
};

} // namespace orvan
