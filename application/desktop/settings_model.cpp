#include "application/desktop/settings_model.h"

namespace orvan {

SettingsModel::SettingsModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                             QObject* parent)
    : QObject(parent),
      tools_{loop, store, clock, asOf, looking_.get()},
      sources_(tools_),
      addresses_(tools_),
      hidden_(tools_),
      reminders_(SettingsTools{loop, store, clock, asOf, asking_.get()}),
      safety_(tools_),
      backup_(tools_) {
  for (auto* part : {static_cast<SettingsPart*>(&sources_), static_cast<SettingsPart*>(&addresses_),
                     static_cast<SettingsPart*>(&hidden_)}) {
    connect(part, &SettingsPart::storeChanged, this, &SettingsModel::storeChanged);
  }
  connect(&hidden_, &SettingsPart::storeChanged, this, &SettingsModel::remindersConcerned);
  connect(&reminders_, &ReminderServiceModel::allowed, this, &SettingsModel::remindersConcerned);
  connect(&sources_, &SourcesModel::added, this, &SettingsModel::mustBeRead);
  connect(&addresses_, &OwnAddressesModel::mustBeReadAgain, this, &SettingsModel::mustBeRead);
}

void SettingsModel::look() {
  for (auto* part : {static_cast<SettingsPart*>(&sources_), static_cast<SettingsPart*>(&addresses_),
                     static_cast<SettingsPart*>(&hidden_), static_cast<SettingsPart*>(&reminders_),
                     static_cast<SettingsPart*>(&safety_), static_cast<SettingsPart*>(&backup_)}) {
    part->forgetAnswer();
    if (part != &sources_) {
      part->look();
    }
  }
  sources_.lookForNew();
}

} // namespace orvan
