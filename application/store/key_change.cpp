#include "application/store/key_change.h"

#include <algorithm>
#include <memory>
#include <system_error>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanSpineCore/key_file.h"
#include "OrvanStore/store_error.h"
#include "application/store/application_store_error.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

CredentialVault vaultOf(const StoreKey& key) {
  return CredentialVault(std::make_shared<StoreKey>(key));
}

bool isSame(const SecretBytes& one, const SecretBytes& other) {
  return std::ranges::equal(one.bytes(), other.bytes());
}

/// Runs `then` while the store is read with this key; false when the key does not open it. Nobody changes the key
/// meanwhile, as that takes a store that nobody reads. Opened to write: what a change left half done is rolled back.
template <typename Then>
bool opensWith(const EncryptedStore& store, Then then) {
  try {
    store.openQueue(StoreRole::applicationMover)->read([&](Connection& connection) {
      connection.fetchOptionalInteger("SELECT count(*) FROM sqlite_master");
      then();
    });
    return true;
  } catch (const StoreError& error) {
    if (failureOf(error) != ApplicationStoreError::cannotDecrypt) {
      throw;
    }
    return false;
  }
}

void settle(const std::filesystem::path& store, const StoreKey& key) {
  const auto pending = key.pending();
  const auto discardPending = [&] { pending.discard(); };
  const auto promotePending = [&] { key.replaceWithPending(); };
  if (opensWith(EncryptedStore(store, vaultOf(key)), discardPending) || !pending.exists()) {
    return;
  }
  if (!opensWith(EncryptedStore(store, vaultOf(pending)), promotePending)) {
    throw Error(ApplicationStoreError::cannotDecrypt, "settling a change of the key");
  }
}

/// One that an interruption left is rolled back by who can write, and fails those who only read.
bool hasJournal(const std::filesystem::path& store) {
  std::error_code ignored;
  return std::filesystem::exists(EncryptedStore::fileBehind(store).native() + "-journal", ignored);
}

void writeAnew(const EncryptedStore& store, const StoreKey& pending, KeyPlace place) {
  bool hasBegun = false;
  try {
    store.changeKey(vaultOf(pending), [&] {
      pending.create(place);
      hasBegun = true;
    });
  } catch (const StoreError& error) {
    if (failureOf(error) == ApplicationStoreError::storeBusy && !hasBegun) {
      throw Error(ApplicationStoreError::storeInUse, "becoming the only user of the store");
    }
    if (!hasBegun) {
      throw;
    }
    // Whether the store was written anew is found by opening it.
  }
}

} // namespace

void changeStoreKey(const std::filesystem::path& store, const StoreKey& key, KeyPlace place) {
  settleKeyChange(store, key);
  const auto former = key.loadLocalStoreKey();
  if (!former) {
    throw Error(CredentialVaultError::keyMissing, "changing the key");
  }
  inApplicationWords("changing the key", [&] { writeAnew(EncryptedStore(store, vaultOf(key)), key.pending(), place); });
  settleKeyChange(store, key);
  if (isSame(*former, *key.loadLocalStoreKey())) {
    throw Error(ApplicationStoreError::storeUnchanged, "changing the key");
  }
}

void moveStoreKey(const std::filesystem::path& store, const StoreKey& key, KeyPlace place) {
  settleKeyChange(store, key);
  const auto bytes = key.loadLocalStoreKey();
  if (!bytes) {
    throw Error(CredentialVaultError::keyMissing, "moving the key");
  }
  key.pending().keep(bytes->bytes(), place);
  key.replaceWithPending();
}

void writeCopyOfKey(const StoreKey& key, const std::filesystem::path& file) {
  const auto bytes = key.loadLocalStoreKey();
  if (!bytes) {
    throw Error(CredentialVaultError::keyMissing, "keeping the former key");
  }
  const KeyFile copy(file);
  const auto found = copy.loadLocalStoreKey();
  if (!found || !isSame(*found, *bytes)) {
    copy.keep(bytes->bytes());
  }
}

void settleKeyChange(const std::filesystem::path& store, const StoreKey& key) {
  if (key.pending().exists() || hasJournal(store)) {
    inApplicationWords("settling a change of the key", [&] { settle(store, key); });
  }
}

} // namespace orvan
