#pragma once

#include <filesystem>
#include <optional>

#include "OrvanPlatform/work_executor.h"
#include "application/desktop/settings_part.h"
#include "application/store/store_key.h"

namespace orvan {

/// Where what Orvan knows lies, how it is encrypted, and where its key is. Belongs to Qt's thread. The destructor waits
/// for a keyring that is asking the user for its password.
class StoreSafetyModel : public orvan::SettingsPart {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  Q_PROPERTY(QString encryption READ encryption NOTIFY changed FINAL)
  Q_PROPERTY(QString store READ store CONSTANT FINAL)
  Q_PROPERTY(QString size READ size NOTIFY changed FINAL)
  Q_PROPERTY(QString keyPlace READ keyPlace NOTIFY changed FINAL)
  Q_PROPERTY(bool isKeyKnown READ isKeyKnown NOTIFY changed FINAL)
  Q_PROPERTY(bool isKeyInKeyring READ isKeyInKeyring NOTIFY changed FINAL)

 public:
  using SettingsPart::SettingsPart;

  const QString& encryption() const noexcept { return encryption_; }
  QString store() const;
  const QString& size() const noexcept { return size_; }
  QString keyPlace() const;
  bool isKeyKnown() const noexcept { return place_.has_value(); }
  bool isKeyInKeyring() const noexcept { return place_ == KeyPlace::keyring; }

  Q_INVOKABLE void moveKeyToKeyring();
  Q_INVOKABLE void moveKeyToFile();
  /// Encrypts the store with a new key. The present one, with which alone older backups open, is first written to the
  /// file that is named; where none is, it goes.
  Q_INVOKABLE void changeKey(const QString& fileForPresentKey);

 Q_SIGNALS:
  void changed();

 protected:
  Task<void> refresh() override;

 private:
  Task<void> moveKey(KeyPlace place);
  Task<void> changeKeyKeeping(std::filesystem::path present);

  QString encryption_;
  QString size_;
  std::optional<KeyPlace> place_;
  /// A keyring may ask the user, who takes their time; nothing else waits for that.
  WorkExecutor moving_;
};

} // namespace orvan
