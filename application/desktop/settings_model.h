#pragma once

#include <QObject>
#include <QtQmlIntegration>

#include "OrvanPlatform/work_executor.h"
#include "application/desktop/backup_model.h"
#include "application/desktop/hidden_things_model.h"
#include "application/desktop/own_addresses_model.h"
#include "application/desktop/reminder_service_model.h"
#include "application/desktop/settings_part.h"
#include "application/desktop/sources_model.h"
#include "application/desktop/store_safety_model.h"

namespace orvan {

/// What the user has Orvan do, and how it stands: the parts of the page of settings. Belongs to Qt's thread. Nothing is
/// looked at before somebody looks at the page.
///
/// Destroy it before the store's thread. The destructor waits for a look at a file or the bus that is under way, for
/// some seconds at most, and for a backup to notice that it is to stop.
class SettingsModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")
  Q_PROPERTY(orvan::SourcesModel* sources READ sources CONSTANT FINAL)
  Q_PROPERTY(orvan::OwnAddressesModel* addresses READ addresses CONSTANT FINAL)
  Q_PROPERTY(orvan::HiddenThingsModel* hidden READ hidden CONSTANT FINAL)
  Q_PROPERTY(orvan::ReminderServiceModel* reminders READ reminders CONSTANT FINAL)
  Q_PROPERTY(orvan::StoreSafetyModel* safety READ safety CONSTANT FINAL)
  Q_PROPERTY(orvan::BackupModel* backup READ backup CONSTANT FINAL)

 public:
  /// With `asOf`, that moment is taken for now. Everything given must outlive this.
  SettingsModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                QObject* parent = nullptr);

  SourcesModel* sources() noexcept { return &sources_; }
  OwnAddressesModel* addresses() noexcept { return &addresses_; }
  HiddenThingsModel* hidden() noexcept { return &hidden_; }
  ReminderServiceModel* reminders() noexcept { return &reminders_; }
  StoreSafetyModel* safety() noexcept { return &safety_; }
  BackupModel* backup() noexcept { return &backup_; }

  /// Looks how everything stands.
  Q_INVOKABLE void look();

 Q_SIGNALS:
  /// The list of people may be another one now.
  void storeChanged();
  /// Which follow-ups may remind is not what it was.
  void remindersConcerned();
  /// There is something to be read of the sources.
  void mustBeRead();

 private:
  // Both outlive the parts, which work on them. What hangs on the bus holds up no look at a file.
  WorkExecutor looking_;
  WorkExecutor asking_;
  SettingsTools tools_;
  SourcesModel sources_;
  OwnAddressesModel addresses_;
  HiddenThingsModel hidden_;
  ReminderServiceModel reminders_;
  StoreSafetyModel safety_;
  BackupModel backup_;
};

} // namespace orvan
