#include "application/session/store_creation.h"

#include <memory>
#include <system_error>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/credential_vault.h"
#include "application/session/session_error.h"
#include "application/store/application_store.h"
#include "application/store/key_change.h"

namespace orvan {
namespace {

void refuseExistingStore(const SessionSettings& settings) {
  std::error_code unreachable;
  if (std::filesystem::exists(settings.store, unreachable)) {
    const bool hasKey = std::filesystem::exists(settings.keyFile, unreachable);
    throw Error(hasKey ? ApplicationStoreError::storeExists : ApplicationStoreError::keyMissingForStore,
                "making a store");
  }
}

void createPrivateFolder(const std::filesystem::path& file) {
  const auto folder = file.parent_path();
  if (folder.empty()) {
    return;
  }
  std::error_code failure;
  if (std::filesystem::create_directories(folder, failure)) {
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failure);
  }
  if (failure) {
    throw Error(SessionError::cannotMakeFolder, "making a store");
  }
}

/// Never while there is a store: a new key could not open it.
KeyOrigin ensureKey(const SessionSettings& settings, KeyPlace place) {
  const StoreKey key(settings.keyFile);
  try {
    if (!key.exists()) {
      key.create(place);
      return KeyOrigin::made;
    }
  } catch (const Error& error) {
    // Another program made it at this moment.
    if (error.code() != CredentialVaultError::keyExists) {
      throw;
    }
  }
  if (place == KeyPlace::keyring && key.place() == KeyPlace::file) {
    moveStoreKey(settings.store, key, place);
  }
  return KeyOrigin::found;
}

} // namespace

KeyOrigin createStoreAndKey(const SessionSettings& settings, KeyPlace place) {
  refuseExistingStore(settings);
  createStoreFolders(settings);
  const auto key = ensureKey(settings, place);
  ApplicationStore::create(settings.store, CredentialVault(std::make_shared<StoreKey>(settings.keyFile)));
  return key;
}

void createStoreFolders(const SessionSettings& settings) {
  createPrivateFolder(settings.store);
  settings.requirePrivateFolder();
  createPrivateFolder(settings.keyFile);
}

} // namespace orvan
