#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "OrvanPlatform/instant.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "application/store/store_key.h"

namespace orvan {

struct StoreAndKey {
  std::filesystem::path store;
  StoreKey key;

  CredentialVault vault() const;
  EncryptedStore encrypted() const { return {store, vault()}; }
};

struct BackupReport {
  std::int64_t people;
  std::uintmax_t bytes;
};

/// Writes what the store holds at this moment into `file`, one file that opens with the store's key, and reads it back
/// before it appears: whole, on disk, or not at all. Others may use the store meanwhile. Nothing is written over.
///
/// `keyFile`, when it is given, gets the key's 32 bytes; it is the caller's to say that the two belong in different
/// places. Throws Error with a BackupError, an ApplicationStoreError or a CredentialVaultError.
BackupReport backUp(const StoreAndKey& source, const std::filesystem::path& file,
                    const std::optional<std::filesystem::path>& keyFile, const CopyProgress& progress);

/// When the latest backup of the store was made; nothing when there was none. It is the age of an empty file beside the
/// store, because where backups are kept is nobody's business.
std::optional<Instant> latestBackup(const std::filesystem::path& store);

/// Throws BackupError::copyDamaged unless the store that is open here is whole and of this version.
void approveCopy(Connection& copy);

} // namespace orvan
