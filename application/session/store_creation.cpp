#include "application/session/store_creation.h"

#include <memory>
#include <system_error>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanSpineCore/key_file.h"
#include "application/session/session_error.h"
#include "application/store/application_store.h"

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
KeyOrigin ensureKey(const SessionSettings& settings) {
  const KeyFile keyFile(settings.keyFile);
  if (keyFile.loadLocalStoreKey()) {
    return KeyOrigin::found;
  }
  try {
    keyFile.create();
    return KeyOrigin::made;
  } catch (const Error& error) {
    // Another program made it at this moment.
    if (error.code() != CredentialVaultError::keyExists) {
      throw;
    }
    return KeyOrigin::found;
  }
}

} // namespace

KeyOrigin createStoreAndKey(const SessionSettings& settings) {
  refuseExistingStore(settings);
  createPrivateFolder(settings.store);
  settings.requirePrivateFolder();
  createPrivateFolder(settings.keyFile);
  const auto key = ensureKey(settings);
  ApplicationStore::create(settings.store, CredentialVault(std::make_shared<KeyFile>(settings.keyFile)));
  return key;
}

} // namespace orvan
