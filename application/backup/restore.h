#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "application/backup/backup.h"

namespace orvan {

/// What a store or a backup tells of itself.
struct StoreSummary {
  std::int64_t people;
  /// When it was written last, as its file says.
  Instant writtenAt;
};

/// What is where the backup is to go.
enum class RestoreTarget {
  none,
  /// A store that opens and is whole.
  sound,
  /// Something that does not open with the key, or is damaged.
  unreadable,
};

/// A backup that was looked at and can be restored.
struct RestorePlan {
  StoreAndKey target;
  StoreAndKey backup;
  StoreSummary found;
  RestoreTarget state;
  /// Of a sound target.
  std::optional<StoreSummary> present;
};

enum class FormerContent { keep, discard };

struct RestoreReport {
  /// Where what the store held before lies now: an encrypted copy, or the damaged store.
  std::optional<std::filesystem::path> former;
  /// The key of the backup has become the store's, because there was none.
  bool keyWasPutInPlace = false;
};

/// Looks at the backup, all of it, and at what is in its way. Changes nothing. `backupKey` is the backup's where that
/// is not the store's. Throws Error with a BackupError, an ApplicationStoreError or a CredentialVaultError.
RestorePlan planRestore(const StoreAndKey& target, const std::filesystem::path& backup,
                        const std::optional<std::filesystem::path>& backupKey);

/// Makes the store hold what the backup holds, encrypted with the store's own key; where there is no key, the backup's
/// becomes it. Whatever interrupts it, the store has its former content or the backup's, or there is none and the same
/// call brings it.
///
/// A sound store is written in one transaction, and other programs go on using it; what it held is kept in a copy
/// beside it first, unless that is to be discarded. An unreadable one is given another name together with its log,
/// which is of no use to the new one. The folders must be there.
RestoreReport restore(const RestorePlan& plan, FormerContent former, Instant now, const CopyProgress& progress);

/// What restoring left beside the store.
std::vector<std::filesystem::path> keptByRestoring(const std::filesystem::path& store);

} // namespace orvan
