#pragma once

#include <filesystem>

#include "application/store/store_key.h"

namespace orvan {

/// Changing a store's key. At every moment, whatever interrupts it, the store opens with the key or with the pending
/// one beside it, and who opens the store next finds out with which: settleKeyChange() comes before every opening.
///
/// Failures are Errors with an ApplicationStoreError or a CredentialVaultError.

/// Encrypts the store with a new random key that is kept in `place` from then on; the former is gone then. Throws
/// ApplicationStoreError::storeInUse when another program has the store open, and storeUnchanged when the store could
/// not be written anew: it opens with the key that it had.
void changeStoreKey(const std::filesystem::path& store, const StoreKey& key, KeyPlace place);

/// Brings the key to another place; nothing about the store changes. Throws as StoreKey::keep() does.
void moveStoreKey(const std::filesystem::path& store, const StoreKey& key, KeyPlace place);

/// Writes the key's bytes into a new file, readable by its owner alone, for backups that only this key opens. A file
/// that has this key already is one from an attempt that went no further. Throws CredentialVaultError::keyExists when
/// there is anything else.
void writeCopyOfKey(const StoreKey& key, const std::filesystem::path& file);

/// Ends a change of the key that was interrupted: of the two keys, the one that opens the store becomes or stays the
/// key, and the other goes. When neither opens it, both stay. Only looks for two files where there is
/// nothing to end.
void settleKeyChange(const std::filesystem::path& store, const StoreKey& key);

} // namespace orvan
