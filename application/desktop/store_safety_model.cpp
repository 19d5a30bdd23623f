#include "application/desktop/store_safety_model.h"

#include <QLocale>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"
#include "application/store/application_store.h"
#include "application/store/key_change.h"
#include "application/store/store_users.h"

namespace orvan {
namespace {

struct SafetyReading {
  std::string engine;
  std::uintmax_t bytes;
  std::optional<KeyPlace> place;
};

SafetyReading readSafety(Session& session) {
  const auto& settings = session.settings();
  auto engine = session.readableStore().withoutTransaction(
      [](Connection& connection) { return connection.fetchOptionalText("PRAGMA cipher_version").value_or(""); });
  std::error_code missing;
  const auto bytes = std::filesystem::file_size(settings.store, missing);
  return {std::move(engine), (missing ? 0 : bytes) + ApplicationStore::logSize(settings.store),
          StoreKey(settings.keyFile).place()};
}

void requireUsable(const SessionSettings& settings) {
  settings.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings.store);
}

Task<void> moveKeyOf(SessionSettings settings, KeyPlace place) {
  requireUsable(settings);
  const StoreKey key(settings.keyFile);
  if (key.place() != place) {
    moveStoreKey(settings.store, key, place);
  }
  co_return;
}

/// What came of changing the key.
struct KeyChange {
  bool isDone = false;
  /// In whose way it was; it may be nobody who can be named.
  std::vector<StoreUser> users;
};

KeyChange changeKeyOf(const SessionSettings& settings, const std::filesystem::path& present) {
  requireUsable(settings);
  const StoreKey key(settings.keyFile);
  const auto place = key.place();
  if (!place) {
    throw Error(CredentialVaultError::keyMissing, "changing the key");
  }
  if (!present.empty()) {
    writeCopyOfKey(key, present);
  }
  try {
    changeStoreKey(settings.store, key, *place);
    return {.isDone = true, .users = {}};
  } catch (const Error& error) {
    if (error.code() != ApplicationStoreError::storeInUse) {
      throw;
    }
    return {.isDone = false, .users = otherUsersOf(settings.store)};
  }
}

} // namespace

Task<void> StoreSafetyModel::refresh() {
  const auto reading = co_await tools().store.ask(readSafety);
  encryption_ = tr("Encrypted with SQLCipher (AES-256)");
  const auto size = QLocale().formattedDataSize(static_cast<qint64>(reading.bytes), 1, QLocale::DataSizeSIFormat);
  size_ = reading.engine.empty() ? size : tr("%1, SQLCipher %2").arg(size, displayText(reading.engine));
  place_ = reading.place;
  setGlance(tr("Encrypted, on this computer alone"));
  Q_EMIT changed();
}

QString StoreSafetyModel::store() const {
  return shownPath(tools().store.settings().store);
}

QString StoreSafetyModel::keyPlace() const {
  if (!place_) {
    return {};
  }
  return isKeyInKeyring()
             ? tr("In the desktop's keyring")
             : tr("In a file that you alone can read: %1").arg(shownPath(tools().store.settings().keyFile));
}

void StoreSafetyModel::moveKeyToKeyring() {
  begin(moveKey(KeyPlace::keyring));
}

void StoreSafetyModel::moveKeyToFile() {
  begin(moveKey(KeyPlace::file));
}

Task<void> StoreSafetyModel::moveKey(KeyPlace place) {
  // A key that does not open the store would be moved for nothing.
  co_await tools().store.ask([](Session& session) { session.openForReading(); });
  co_await runOn(moving_.get(), moveKeyOf(tools().store.settings(), place));
  co_await refresh();
  say(place == KeyPlace::keyring
          ? tr("The key is in the desktop's keyring now. Keep a copy of it elsewhere: a backup can write one.")
          : tr("The key is in its file now."));
}

void StoreSafetyModel::changeKey(const QString& fileForPresentKey) {
  begin(changeKeyKeeping(writtenPath(fileForPresentKey)));
}

Task<void> StoreSafetyModel::changeKeyKeeping(std::filesystem::path present) {
  const auto change = co_await tools().store.askWhileClosed(
      [present](const SessionSettings& settings) { return changeKeyOf(settings, present); });
  if (!change.isDone) {
    QStringList programs;
    for (const auto& user : change.users) {
      programs.push_back(tr("%1 (process %2)").arg(displayText(user.program)).arg(user.process));
    }
    refuse(
        programs.isEmpty()
            ? tr("Something has the store open, such as a backup or an import. Let it end, and try again; nothing was "
                 "changed.")
            : tr("Another program has the store open: %1. Close it, and try again; nothing was changed.")
                  .arg(programs.join(tr(", "))));
    co_return;
  }
  co_await refresh();
  const auto isChanged = tr("The store has a new key. Make a new backup, and keep a copy of the new key.");
  say(present.empty()
          ? isChanged
          : isChanged + u' ' + tr("The former key, for backups made before, is in %1.").arg(shownPath(present)));
}

} // namespace orvan
