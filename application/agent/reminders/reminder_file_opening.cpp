#include "application/agent/reminders/reminder_file_opening.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanStore/store_error.h"
#include "application/agent/reminders/reminder_schema.h"
#include "application/store/application_store.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

constexpr const char* damagedInfix = ".damaged-";
constexpr std::size_t mostSetAside = 2;

/// The agent stays for as long as the user is logged in: what it keeps of the file is little.
constexpr std::int64_t pageCacheKiB = 1024;

bool isThere(const std::filesystem::path& file) {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(file, ignored));
}

void makePrivateFolder(const std::filesystem::path& folder) {
  std::error_code failure;
  if (!folder.empty() && std::filesystem::create_directories(folder, failure)) {
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failure);
  }
  if (failure) {
    throw Error(ReminderFileError::cannotMakeFolder, "making the reminders' folder");
  }
}

/// Content that no key and no repair brings back, as against a file that cannot be reached now.
bool tellsDamage(const Error& error) {
  if (error.code() == EncryptedStoreError::plaintext || error.code() == ReminderSchemaError::notOurs) {
    return true;
  }
  const auto* fault = dynamic_cast<const StoreError*>(&error);
  return fault != nullptr && failureOf(*fault) == ApplicationStoreError::cannotDecrypt;
}

void requireSound(Connection& connection) {
  if (ApplicationStore::damage(connection) != StoreDamage::none) {
    throw StoreError({SQLITE_CORRUPT, sqliteCategory()}, "checking the reminders' pages");
  }
}

std::unique_ptr<DatabaseQueue> openSound(const EncryptedStore& file) {
  EncryptedStore::examine(file.file(), StoreRole::applicationWriter);
  auto queue = file.openQueue(StoreRole::programWriter);
  queue->withoutTransaction([](Connection& connection) {
    connection.setPageCacheCeiling(pageCacheKiB);
    // Nobody else moves the log into the file.
    connection.executeScript("PRAGMA wal_autocheckpoint = 256");
    requireSound(connection);
  });
  queue->write(bringReminderSchemaForward);
  return queue;
}

void syncFolder(const std::filesystem::path& folder) noexcept {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor >= 0) {
    fsync(descriptor);
    close(descriptor);
  }
}

void removeFormerlySetAside(const std::filesystem::path& file) {
  const std::string logEnding = "-wal";
  std::vector<std::filesystem::path> setAside;
  for (const auto& path : ApplicationStore::filesBeside(file, damagedInfix)) {
    if (!path.native().ends_with(logEnding)) {
      setAside.push_back(path);
    }
  }
  std::error_code stays;
  for (std::size_t at = 0; at + mostSetAside < setAside.size(); ++at) {
    std::filesystem::remove(setAside[at], stays);
    std::filesystem::remove(setAside[at].native() + logEnding, stays);
  }
}

/// Nothing has the file open. Its log goes with it: the two may be of use together.
void setAside(const std::filesystem::path& file, Instant now) {
  const auto name = file.native() + damagedInfix + formatInternetDateTime(now);
  if (std::rename(file.c_str(), name.c_str()) != 0) {
    throw Error({errno, std::generic_category()}, "setting damaged reminders aside");
  }
  std::rename((file.native() + "-wal").c_str(), (name + "-wal").c_str());
  unlink((file.native() + "-shm").c_str());
  syncFolder(file.parent_path());
  removeFormerlySetAside(file);
}

[[noreturn]] void throwInReminderWords(const Error& error) {
  const auto& code = error.code();
  if (code == EncryptedStoreError::notPrivate) {
    throw Error(ReminderFileError::notPrivate, "opening the reminders");
  }
  if (code.category() == make_error_code(EncryptedStoreError{}).category() ||
      code.category() == std::generic_category() || dynamic_cast<const StoreError*>(&error) != nullptr) {
    throw Error(ReminderFileError::unusable, "opening the reminders");
  }
  throw error;
}

} // namespace

ReminderPaths ReminderPaths::besideStore(const std::filesystem::path& store) {
  const auto folder = std::filesystem::absolute(store).parent_path();
  return {.file = folder / "reminders.db", .keyFile = folder / "reminders.key", .lock = folder / "reminders.lock"};
}

ProgramLock::ProgramLock(const std::filesystem::path& file)
    : descriptor_(open(file.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
  if (descriptor_ < 0) {
    throw Error(ReminderFileError::unusable, "opening the reminders' lock");
  }
  if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    const bool isHeld = errno == EWOULDBLOCK;
    close(descriptor_);
    throw Error(isHeld ? ReminderFileError::inUse : ReminderFileError::unusable, "locking the reminders");
  }
}

ProgramLock::~ProgramLock() {
  close(descriptor_);
}

OpenedReminderFile::OpenedReminderFile(const ReminderPaths& paths, KeyPlace placeOfNewKey, Instant now) {
  makePrivateFolder(paths.file.parent_path());
  lock_ = std::make_unique<ProgramLock>(paths.lock);
  const StoreKey key(paths.keyFile);
  const EncryptedStore file(paths.file, CredentialVault(std::make_shared<StoreKey>(key)));
  if (!key.exists()) {
    if (isThere(paths.file)) {
      throw Error(ReminderFileError::keyMissing, "opening the reminders");
    }
    key.create(placeOfNewKey);
  }
  try {
    if (!isThere(paths.file)) {
      file.create(createReminderSchema);
      origin_ = ReminderFileOrigin::made;
    }
    try {
      queue_ = openSound(file);
    } catch (const Error& error) {
      if (!tellsDamage(error)) {
        throw;
      }
      setAside(file.file(), now);
      file.create(createReminderSchema);
      origin_ = ReminderFileOrigin::madeAfterDamage;
      queue_ = openSound(file);
    }
  } catch (const Error& error) {
    throwInReminderWords(error);
  }
}

} // namespace orvan
