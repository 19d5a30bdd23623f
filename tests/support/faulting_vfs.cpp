#include "tests/support/faulting_vfs.h"

#include <fstream>
#include <iterator>
#include <memory>

namespace orvan {

/// A file's methods: the base layer's, but for those that may fail or are watched. The file itself stays the base
/// layer's, and no temporary file has a path.
struct FaultingVfs::File : sqlite3_io_methods {
  FaultingVfs* owner;
  const sqlite3_io_methods* base;
  std::filesystem::path path;

  File(FaultingVfs* itsOwner, const sqlite3_io_methods* itsBase, const char* name)
      : sqlite3_io_methods(*itsBase), owner(itsOwner), base(itsBase), path(name != nullptr ? name : "") {
    iVersion = 2; // Shared memory, and no mapping of the file, which would pass reads by.
    xClose = close;
    xRead = read;
    xWrite = write;
    xTruncate = truncate;
    xSync = sync;
  }

  static const File& of(sqlite3_file* file) noexcept { return *static_cast<const File*>(file->pMethods); }

  static int close(sqlite3_file* file) {
    const std::unique_ptr<const File> ours(&of(file));
    return ours->base->xClose(file);
  }

  static int read(sqlite3_file* file, void* bytes, int length, sqlite3_int64 offset) {
    const int fault = of(file).owner->takeTurn(FileCall::read);
    return fault != SQLITE_OK ? fault : of(file).base->xRead(file, bytes, length, offset);
  }

  static int write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
    if (const int fault = of(file).owner->takeTurn(FileCall::write); fault != SQLITE_OK) {
      return fault;
    }
    if (of(file).path.string().ends_with("-wal")) {
      of(file).owner->walBytes_ += length;
    }
    return of(file).base->xWrite(file, bytes, length, offset);
  }

  static int truncate(sqlite3_file* file, sqlite3_int64 size) {
    const int fault = of(file).owner->takeTurn(FileCall::truncate);
    return fault != SQLITE_OK ? fault : of(file).base->xTruncate(file, size);
  }

  static int sync(sqlite3_file* file, int flags) {
    const int fault = of(file).owner->takeTurn(FileCall::sync);
    const int code = fault != SQLITE_OK ? fault : of(file).base->xSync(file, flags);
    if (code == SQLITE_OK && !of(file).path.empty()) {
      of(file).owner->rememberSynced(of(file).path);
    }
    return code;
  }
};

int FaultingVfs::open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* givenFlags) {
  auto& owner = *static_cast<FaultingVfs*>(vfs->pAppData);
  file->pMethods = nullptr;
  const int fault = owner.takeTurn(FileCall::open);
  const int code = fault != SQLITE_OK ? fault : owner.base_->xOpen(owner.base_, name, file, flags, givenFlags);
  if (file->pMethods != nullptr) {
    file->pMethods = new File(&owner, file->pMethods, name);
  }
  return code;
}

int FaultingVfs::remove(sqlite3_vfs* vfs, const char* name, int syncDirectory) {
  auto& owner = *static_cast<FaultingVfs*>(vfs->pAppData);
  if (const int fault = owner.takeTurn(FileCall::remove); fault != SQLITE_OK) {
    return fault;
  }
  owner.synced_.erase(name);
  return owner.base_->xDelete(owner.base_, name, syncDirectory);
}

FaultingVfs::FaultingVfs() : base_(sqlite3_vfs_find(nullptr)), shim_(*base_) {
  shim_.zName = "faulting";
  shim_.pNext = nullptr;
  shim_.pAppData = this;
  shim_.xOpen = open;
  shim_.xDelete = remove;
  sqlite3_vfs_register(&shim_, 1);
}

FaultingVfs::~FaultingVfs() {
  sqlite3_vfs_unregister(&shim_);
  sqlite3_vfs_register(base_, 1);
}

void FaultingVfs::failAt(FileCall call, int ordinal, FaultSpan span, int code) {
  failing_ = call;
  firstFault_ = counts_[call] + ordinal;
  span_ = span;
  code_ = code;
  failed_ = false;
}

int FaultingVfs::takeTurn(FileCall call) {
  const auto number = ++counts_[call];
  const bool isPastFirst = number > firstFault_ && span_ == FaultSpan::fromThenOn;
  const bool isTurn = call == failing_ && (number == firstFault_ || isPastFirst);
  failed_ = failed_ || isTurn;
  return isTurn ? code_ : SQLITE_OK;
}

void FaultingVfs::rememberSyncs(const std::filesystem::path& folder) {
  remembersSyncs_ = true;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    rememberSynced(entry.path());
  }
}

void FaultingVfs::rememberSynced(const std::filesystem::path& path) {
  if (remembersSyncs_) {
    std::ifstream file(path, std::ios::binary);
    synced_[path].assign(std::istreambuf_iterator<char>(file), {});
  }
}

void FaultingVfs::copySyncedFiles(const std::filesystem::path& folder) const {
  for (const auto& [path, content] : synced_) {
    std::ofstream(folder / path.filename(), std::ios::binary) << content;
  }
}

} // namespace orvan
