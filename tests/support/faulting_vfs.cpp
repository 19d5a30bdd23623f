#include "tests/support/faulting_vfs.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <new>

namespace orvan {

/// The base layer's own fields are kept: its functions take any sqlite3_vfs and look into none but for opening.
struct FaultingVfs::Shim : sqlite3_vfs {
  FaultingVfs* owner;
};

/// Begins the memory that SQLite sets aside for a file, aligned to 8 bytes; the base layer's file follows.
struct FaultingVfs::File : sqlite3_file {
  FaultingVfs* owner;
  bool isWal;
  bool isKept;
  std::filesystem::path path;

  sqlite3_file* base() noexcept { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

struct FaultingVfs::Methods {
  static File& of(sqlite3_file* file) noexcept { return *static_cast<File*>(file); }
  static sqlite3_file* base(sqlite3_file* file) noexcept { return of(file).base(); }

  static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* memory, int flags, int* givenFlags) {
    auto& owner = *static_cast<Shim*>(vfs)->owner;
    memory->pMethods = nullptr;
    if (const auto fault = owner.takeTurn(FileCall::open)) {
      return *fault;
    }
    auto* const file = new (memory) File;
    file->owner = &owner;
    file->isWal = (flags & SQLITE_OPEN_WAL) != 0;
    file->isKept = name != nullptr && (flags & (SQLITE_OPEN_WAL | SQLITE_OPEN_MAIN_DB)) != 0;
    file->path = name != nullptr ? name : "";
    const int code = owner.base_->xOpen(owner.base_, name, file->base(), flags, givenFlags);
    if (file->base()->pMethods == nullptr) {
      file->~File();
      memory->pMethods = nullptr;
      return code;
    }
    memory->pMethods = &table;
    return code;
  }

  static int remove(sqlite3_vfs* vfs, const char* name, int syncDirectory) {
    auto& owner = *static_cast<Shim*>(vfs)->owner;
    if (const auto fault = owner.takeTurn(FileCall::remove)) {
      return *fault;
    }
    owner.forget(name);
    return owner.base_->xDelete(owner.base_, name, syncDirectory);
  }

  static int close(sqlite3_file* file) {
    const int code = base(file)->pMethods->xClose(base(file));
    of(file).~File();
    return code;
  }

  static int read(sqlite3_file* file, void* bytes, int length, sqlite3_int64 offset) {
    const auto fault = of(file).owner->takeTurn(FileCall::read);
    return fault ? *fault : base(file)->pMethods->xRead(base(file), bytes, length, offset);
  }

  static int write(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
    if (const auto fault = of(file).owner->takeTurn(FileCall::write)) {
      return *fault;
    }
    if (of(file).isWal) {
      of(file).owner->addWalBytes(length);
    }
    return base(file)->pMethods->xWrite(base(file), bytes, length, offset);
  }

  static int truncate(sqlite3_file* file, sqlite3_int64 size) {
    const auto fault = of(file).owner->takeTurn(FileCall::truncate);
    return fault ? *fault : base(file)->pMethods->xTruncate(base(file), size);
  }

  static int sync(sqlite3_file* file, int flags) {
    if (const auto fault = of(file).owner->takeTurn(FileCall::sync)) {
      return *fault;
    }
    const int code = base(file)->pMethods->xSync(base(file), flags);
    if (code == SQLITE_OK && of(file).isKept) {
      of(file).owner->rememberSynced(of(file).path);
    }
    return code;
  }

  static int size(sqlite3_file* file, sqlite3_int64* bytes) {
    return base(file)->pMethods->xFileSize(base(file), bytes);
  }
  static int lock(sqlite3_file* file, int level) { return base(file)->pMethods->xLock(base(file), level); }
  static int unlock(sqlite3_file* file, int level) { return base(file)->pMethods->xUnlock(base(file), level); }
  static int isReserved(sqlite3_file* file, int* answer) {
    return base(file)->pMethods->xCheckReservedLock(base(file), answer);
  }
  static int control(sqlite3_file* file, int operation, void* argument) {
    return base(file)->pMethods->xFileControl(base(file), operation, argument);
  }
  static int sectorSize(sqlite3_file* file) { return base(file)->pMethods->xSectorSize(base(file)); }
  static int traits(sqlite3_file* file) { return base(file)->pMethods->xDeviceCharacteristics(base(file)); }
  static int mapShared(sqlite3_file* file, int region, int length, int extend, void volatile** memory) {
    return base(file)->pMethods->xShmMap(base(file), region, length, extend, memory);
  }
  static int lockShared(sqlite3_file* file, int offset, int count, int flags) {
    return base(file)->pMethods->xShmLock(base(file), offset, count, flags);
  }
  static void barrier(sqlite3_file* file) { base(file)->pMethods->xShmBarrier(base(file)); }
  static int unmapShared(sqlite3_file* file, int remove) { return base(file)->pMethods->xShmUnmap(base(file), remove); }

  static const sqlite3_io_methods table;
};

/// Version 2: shared memory, and no mapping of the file, which would pass reads by.
const sqlite3_io_methods FaultingVfs::Methods::table{
    2,       close,      read,   write,     truncate,   sync,    size,        lock,    unlock, isReserved,
    control, sectorSize, traits, mapShared, lockShared, barrier, unmapShared, nullptr, nullptr};

FaultingVfs::FaultingVfs() : base_(sqlite3_vfs_find(nullptr)), shim_(std::make_unique<Shim>()) {
  static_cast<sqlite3_vfs&>(*shim_) = *base_;
  shim_->owner = this;
  shim_->zName = "faulting";
  shim_->pNext = nullptr;
  shim_->szOsFile = static_cast<int>(sizeof(File)) + base_->szOsFile;
  shim_->xOpen = Methods::open;
  shim_->xDelete = Methods::remove;
  sqlite3_vfs_register(shim_.get(), 1);
}

FaultingVfs::~FaultingVfs() {
  sqlite3_vfs_unregister(shim_.get());
  sqlite3_vfs_register(base_, 1);
}

void FaultingVfs::failAt(FileCall call, int ordinal, FaultSpan span, int code) {
  const std::lock_guard lock(mutex_);
  failing_ = call;
  callsUntilFault_ = ordinal;
  span_ = span;
  code_ = code;
  failed_ = false;
}

bool FaultingVfs::hasFailed() const {
  const std::lock_guard lock(mutex_);
  return failed_;
}

void FaultingVfs::heal() {
  const std::lock_guard lock(mutex_);
  callsUntilFault_.reset();
}

void FaultingVfs::resetCounts() {
  const std::lock_guard lock(mutex_);
  counts_ = {};
  walBytes_ = 0;
}

std::int64_t FaultingVfs::count(FileCall call) const {
  const std::lock_guard lock(mutex_);
  return counts_.at(static_cast<std::size_t>(call));
}

std::int64_t FaultingVfs::walBytesWritten() const {
  const std::lock_guard lock(mutex_);
  return walBytes_;
}

void FaultingVfs::copySyncedFiles(const std::filesystem::path& folder) const {
  const std::lock_guard lock(mutex_);
  for (const auto& [path, content] : synced_) {
    std::ofstream copy(folder / path.filename(), std::ios::binary | std::ios::trunc);
    copy.write(content.data(), static_cast<std::streamsize>(content.size()));
  }
}

std::optional<int> FaultingVfs::takeTurn(FileCall call) {
  const std::lock_guard lock(mutex_);
  ++counts_.at(static_cast<std::size_t>(call));
  if (call != failing_ || !callsUntilFault_) {
    return std::nullopt;
  }
  *callsUntilFault_ = std::max(*callsUntilFault_ - 1, -1);
  const bool isTurn = span_ == FaultSpan::once ? *callsUntilFault_ == 0 : *callsUntilFault_ <= 0;
  failed_ = failed_ || isTurn;
  return isTurn ? std::optional{code_} : std::nullopt;
}

void FaultingVfs::addWalBytes(std::int64_t length) {
  const std::lock_guard lock(mutex_);
  walBytes_ += length;
}

void FaultingVfs::rememberSyncs(const std::filesystem::path& folder) {
  {
    const std::lock_guard lock(mutex_);
    remembersSyncs_ = true;
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    rememberSynced(entry.path());
  }
}

void FaultingVfs::rememberSynced(const std::filesystem::path& path) {
  const std::lock_guard lock(mutex_);
  if (remembersSyncs_) {
    std::ifstream file(path, std::ios::binary);
    synced_[path].assign(std::istreambuf_iterator<char>(file), {});
  }
}

void FaultingVfs::forget(const std::filesystem::path& path) {
  const std::lock_guard lock(mutex_);
  synced_.erase(path);
}

} // namespace orvan
