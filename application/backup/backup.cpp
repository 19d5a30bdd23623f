#include "application/backup/backup.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <fstream>
#include <memory>
#include <string>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanSpineCore/key_file.h"
#include "application/backup/backup_error.h"
#include "application/store/application_store.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

constexpr const char* attempt = "making a backup";

std::filesystem::path folderOf(const std::filesystem::path& file) {
  return std::filesystem::absolute(file).parent_path();
}

bool isOneOf(const std::filesystem::path& file, const std::filesystem::path& owner) {
  constexpr std::array endings{"", "-wal", "-shm", "-journal", ".being-made", ".pending", ".last-backup"};
  for (const char* ending : endings) {
    if (file == owner.native() + ending) {
      return true;
    }
  }
  return false;
}

void requireFreeName(const std::filesystem::path& file, const StoreAndKey& source) {
  std::error_code unreachable;
  const auto folder = std::filesystem::canonical(folderOf(file), unreachable);
  if (unreachable || !std::filesystem::is_directory(folder, unreachable)) {
    throw Error(BackupError::folderMissing, attempt);
  }
  const auto path = folder / file.filename();
  if (isOneOf(path, source.encrypted().file()) || isOneOf(path, EncryptedStore::fileBehind(source.key.file()))) {
    throw Error(BackupError::nameIsTheStores, attempt);
  }
  if (!file.has_filename() || std::filesystem::exists(std::filesystem::symlink_status(path, unreachable))) {
    throw Error(BackupError::nameTaken, attempt);
  }
  if (access(folder.c_str(), W_OK | X_OK) != 0) {
    throw Error(BackupError::folderNotWritable, attempt);
  }
}

std::filesystem::path markOf(const std::filesystem::path& store) {
  return EncryptedStore::fileBehind(store).native() + ".last-backup";
}

/// A backup is one without this too.
void rememberBackup(const std::filesystem::path& store) {
  const auto mark = markOf(store);
  std::error_code ignored;
  const std::ofstream made(mark, std::ios::trunc);
  std::filesystem::permissions(mark, std::filesystem::perms{0600}, ignored);
  std::filesystem::last_write_time(mark, std::filesystem::file_time_type::clock::now(), ignored);
}

/// The store has just been opened: what goes wrong now concerns its pages, or the place of the backup.
[[noreturn]] void throwAsOurs(const Error& error) {
  if (error.code() == ApplicationStoreError::cannotDecrypt) {
    throw Error(BackupError::storeDamaged, attempt);
  }
  if (error.code() == ApplicationStoreError::cannotReachStore || error.code() == ApplicationStoreError::storeReadOnly) {
    throw Error(BackupError::folderNotWritable, attempt);
  }
  if (error.code() == ApplicationStoreError::diskFull) {
    throw Error(BackupError::noRoom, attempt);
  }
  throw error;
}

std::int64_t countPeople(Connection& connection) {
  return connection.fetchOptionalInteger("SELECT count(*) FROM person").value_or(0);
}

} // namespace

CredentialVault StoreAndKey::vault() const {
  return CredentialVault(std::make_shared<StoreKey>(key));
}

void approveCopy(Connection& copy) {
  // What the store itself may lack is no reason to have no backup of it.
  const bool isWhole =
      ApplicationStore::damage(copy) == StoreDamage::none && SchemaIdentity::of(copy) == SchemaIdentity::newest();
  if (!isWhole) {
    throw Error(BackupError::copyDamaged, "reading a copy of the store");
  }
}

BackupReport backUp(const StoreAndKey& source, const std::filesystem::path& file,
                    const std::optional<std::filesystem::path>& keyFile, const CopyProgress& progress) {
  requireFreeName(file, source);
  if (keyFile) {
    requireFreeName(*keyFile, source);
    if (std::filesystem::absolute(*keyFile).lexically_normal() == std::filesystem::absolute(file).lexically_normal()) {
      throw Error(BackupError::nameTaken, attempt);
    }
  }
  // Says what is wrong with the store, and brings an older one to this version.
  ApplicationStore::open(source.store, source.vault(), ApplicationStore::Access::read);
  BackupReport report{};
  const auto approve = [&report](Connection& copy) {
    approveCopy(copy);
    report.people = countPeople(copy);
  };
  try {
    inApplicationWords(attempt, [&] {
      source.encrypted().copyTo(EncryptedStore(file, source.vault()), CopyForm::singleFile, approve, progress);
    });
  } catch (const Error& error) {
    throwAsOurs(error);
  }
  if (keyFile) {
    KeyFile(*keyFile).keep(source.key.loadLocalStoreKey().value().bytes());
  }
  rememberBackup(source.store);
  report.bytes = std::filesystem::file_size(file);
  return report;
}

std::optional<Instant> latestBackup(const std::filesystem::path& store) {
  std::error_code missing;
  const auto time = std::filesystem::last_write_time(markOf(store), missing);
  if (missing) {
    return std::nullopt;
  }
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::file_clock::to_sys(time));
}

} // namespace orvan
