#include "application/backup/restore.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <system_error>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "application/backup/backup_error.h"
#include "application/store/application_store.h"
#include "application/store/key_change.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

constexpr const char* looking = "looking at a backup";
constexpr const char* restoring = "restoring from a backup";
constexpr const char* beforeRestore = ".before-restore-";
constexpr const char* setAside = ".set-aside-";

/// What the application would say of its store, said of a backup.
BackupError failureOfBackup(ApplicationStoreError error) {
  switch (error) {
    case ApplicationStoreError::storeMissing:
      return BackupError::backupMissing;
    case ApplicationStoreError::storeNotRegular:
      return BackupError::backupNotRegular;
    case ApplicationStoreError::plaintextStore:
      return BackupError::plaintext;
    case ApplicationStoreError::cannotDecrypt:
    case ApplicationStoreError::keyMalformed:
      return BackupError::wrongKey;
    default:
      return BackupError::backupUnreachable;
  }
}

template <typename Body>
auto inBackupWords(Body body) {
  try {
    return inApplicationWords(looking, body);
  } catch (const Error& error) {
    if (error.code().category() == make_error_code(ApplicationStoreError{}).category() &&
        error.code() != ApplicationStoreError::keyNotInKeyring) {
      throw Error(failureOfBackup(static_cast<ApplicationStoreError>(error.code().value())), looking);
    }
    throw;
  }
}

Instant writtenAt(const std::filesystem::path& store) {
  std::error_code missing;
  auto latest = std::filesystem::last_write_time(store);
  const auto log = std::filesystem::last_write_time(EncryptedStore::logFileOf(store), missing);
  if (!missing) {
    latest = std::max(latest, log);
  }
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::file_clock::to_sys(latest));
}

StoreSummary summaryOf(Connection& connection, const std::filesystem::path& store) {
  return {connection.fetchOptionalInteger("SELECT count(*) FROM person").value_or(0), writtenAt(store)};
}

void requireOurs(Connection& connection) {
  const auto found = SchemaIdentity::of(connection);
  if (found.application != SchemaIdentity::orvan) {
    throw Error(BackupError::notOurs, looking);
  }
  if (found.version > SchemaIdentity::newest().version) {
    throw Error(BackupError::newer, looking);
  }
}

void requireWhole(Connection& connection) {
  if (ApplicationStore::damage(connection) != StoreDamage::none) {
    throw Error(BackupError::backupDamaged, looking);
  }
}

/// Only reads: a backup is never changed, and may lie where nothing can be.
StoreSummary lookAtBackup(const StoreAndKey& backup) {
  const auto opened = inBackupWords([&] { return backup.encrypted().openQueue(StoreRole::programReader); });
  return opened->withoutTransaction([&](Connection& connection) {
    requireOurs(connection);
    requireWhole(connection);
    return summaryOf(connection, backup.store);
  });
}

bool isUnreadable(const std::error_code& code) {
  return code == ApplicationStoreError::cannotDecrypt || code == ApplicationStoreError::storeEmpty ||
         code == ApplicationStoreError::schemaMissing;
}

/// Nothing when it cannot be read as a whole.
std::optional<StoreSummary> lookAtTarget(const StoreAndKey& target) {
  try {
    settleKeyChange(target.store, target.key);
    const auto opened = ApplicationStore::open(target.store, target.vault(), ApplicationStore::Access::read);
    return opened->withoutTransaction([&](Connection& connection) {
      return ApplicationStore::damage(connection) == StoreDamage::none
                 ? std::optional{summaryOf(connection, target.store)}
                 : std::nullopt;
    });
  } catch (const Error& error) {
    if (!isUnreadable(error.code())) {
      throw;
    }
    return std::nullopt;
  }
}

/// A name beside the store that tells what the file is and from when, and that nothing has yet.
std::filesystem::path nameBeside(const std::filesystem::path& store, const char* ending, Instant now) {
  auto stamp = formatInternetDateTime(now);
  std::erase_if(stamp, [](char c) { return c == '-' || c == ':'; });
  const auto name = store.native() + ending + stamp;
  auto free = name;
  for (int number = 2; std::filesystem::exists(free); ++number) {
    free = name + "-" + std::to_string(number);
  }
  return free;
}

/// The store goes first: a log that stays behind without it is found by the next restoring, while a store without its
/// log would be taken for whole.
std::optional<std::filesystem::path> giveWay(const std::filesystem::path& store, Instant now) {
  const auto aside = nameBeside(store, setAside, now);
  bool wasThere = false;
  for (const char* ending : {"", "-wal", "-shm", "-journal"}) {
    std::error_code failure;
    std::filesystem::rename(store.native() + ending, aside.native() + ending, failure);
    if (failure && failure != std::errc::no_such_file_or_directory) {
      throw Error(ApplicationStoreError::cannotReachStore, restoring);
    }
    wasThere = wasThere || !failure;
  }
  return wasThere ? std::optional{aside} : std::nullopt;
}

std::filesystem::path keepFormer(const StoreAndKey& target, Instant now) {
  const auto copy = nameBeside(target.encrypted().file(), beforeRestore, now);
  target.encrypted().copyTo(EncryptedStore(copy, target.vault()), CopyForm::singleFile, approveCopy, nullptr);
  return copy;
}

void emptyLogOf(const StoreAndKey& target) {
  // Opened to be written, it gets the newest tables too.
  const auto store = ApplicationStore::open(target.store, target.vault(), ApplicationStore::Access::write);
  ApplicationStore::checkpointWithoutWaiting(*store);
}

RestoreReport restoreInto(const RestorePlan& plan, FormerContent former, Instant now, const CopyProgress& progress) {
  RestoreReport report;
  if (former == FormerContent::keep) {
    report.former = keepFormer(plan.target, now);
  }
  plan.backup.encrypted().copyInto(plan.target.encrypted(), progress);
  return report;
}

RestoreReport restoreAnew(const RestorePlan& plan, Instant now, const CopyProgress& progress) {
  RestoreReport report;
  report.former = giveWay(plan.target.encrypted().file(), now);
  plan.backup.encrypted().copyTo(plan.target.encrypted(), CopyForm::store, requireWhole, progress);
  return report;
}

} // namespace

RestorePlan planRestore(const StoreAndKey& target, const std::filesystem::path& backup,
                        const std::optional<std::filesystem::path>& backupKey) {
  const StoreAndKey source{backup, backupKey ? StoreKey(*backupKey) : target.key};
  if (!source.key.exists()) {
    throw Error(BackupError::noKey, looking);
  }
  if (EncryptedStore::fileBehind(backup) == target.encrypted().file()) {
    throw Error(BackupError::backupIsTheStore, looking);
  }
  RestorePlan plan{target, source, lookAtBackup(source), RestoreTarget::none, std::nullopt};
  if (target.encrypted().exists()) {
    // Without a key of its own, it may well have the backup's.
    plan.present = lookAtTarget(target.key.exists() ? target : StoreAndKey{target.store, source.key});
    plan.state = plan.present ? RestoreTarget::sound : RestoreTarget::unreadable;
  }
  return plan;
}

RestoreReport restore(const RestorePlan& plan, FormerContent former, Instant now, const CopyProgress& progress) {
  const bool lacksKey = !plan.target.key.exists();
  if (lacksKey) {
    plan.target.key.keep(plan.backup.key.loadLocalStoreKey().value().bytes(), KeyPlace::file);
  }
  return inApplicationWords(restoring, [&] {
    auto report = plan.state == RestoreTarget::sound ? restoreInto(plan, former, now, progress)
                                                     : restoreAnew(plan, now, progress);
    report.keyWasPutInPlace = lacksKey;
    emptyLogOf(plan.target);
    return report;
  });
}

std::vector<std::filesystem::path> keptByRestoring(const std::filesystem::path& store) {
  auto kept = ApplicationStore::filesBeside(store, beforeRestore);
  std::ranges::copy(ApplicationStore::filesBeside(store, setAside), std::back_inserter(kept));
  return kept;
}

} // namespace orvan
