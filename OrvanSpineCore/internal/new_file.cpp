#include "OrvanSpineCore/internal/new_file.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "OrvanPlatform/error.h"

namespace orvan::internal {
namespace {

[[noreturn]] void fail(const char* attempt) {
  throw Error({errno, std::generic_category()}, attempt);
}

/// A file, or a store with the files SQLite keeps beside it.
void removeWithCompanions(const std::filesystem::path& file) noexcept {
  for (const char* suffix : {"-wal", "-shm", "-journal", ""}) {
    unlink((file.native() + suffix).c_str());
  }
}

void createEmpty(const std::filesystem::path& file) {
  constexpr mode_t ownerOnly = 0600;
  const int descriptor = open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, ownerOnly);
  if (descriptor < 0) {
    fail("creating a file");
  }
  close(descriptor);
}

void syncContent(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  const bool isSynced = descriptor >= 0 && fsync(descriptor) == 0;
  const int reason = errno;
  if (descriptor >= 0) {
    close(descriptor);
  }
  if (!isSynced) {
    throw Error({reason, std::generic_category()}, "syncing a new file");
  }
}

/// Not every file system can rename without replacing; those that cannot have hard links.
bool renameUnlessTaken(const std::filesystem::path& from, const std::filesystem::path& to) noexcept {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  return errno != EEXIST && link(from.c_str(), to.c_str()) == 0;
}

void requireFree(const std::filesystem::path& path) {
  if (std::filesystem::exists(std::filesystem::symlink_status(path))) {
    throw Error(std::make_error_code(std::errc::file_exists), "naming a new file");
  }
}

} // namespace

NewFile::FolderLock::FolderLock(const std::filesystem::path& folder)
    : descriptor_(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (descriptor_ < 0) {
    fail("opening a folder");
  }
  // A file system without locks takes no turns; the names are still given to one file each.
  while (flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) {
  }
}

NewFile::FolderLock::~FolderLock() {
  close(descriptor_);
}

void NewFile::FolderLock::sync() const {
  if (fsync(descriptor_) != 0) {
    fail("syncing a folder");
  }
}

NewFile::NewFile(std::filesystem::path finalPath)
    : finalPath_(std::move(finalPath)), path_(finalPath_.native() + ".being-made"), folder_(finalPath_.parent_path()) {
  requireFree(finalPath_);
  removeWithCompanions(path_);
  createEmpty(path_);
}

NewFile::~NewFile() {
  removeWithCompanions(path_);
}

void NewFile::appear() {
  syncContent(path_);
  requireFree(finalPath_);
  for (const char* suffix : {"-wal", "-shm", "-journal"}) {
    unlink((finalPath_.native() + suffix).c_str());
  }
  if (!renameUnlessTaken(path_, finalPath_)) {
    fail("naming a new file");
  }
  folder_.sync();
}

} // namespace orvan::internal
