#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace orvan {

/// The calls to the file system that can be counted and made to fail.
enum class FileCall { open, read, write, sync, truncate, remove };

enum class FaultSpan { once, fromThenOn };

/// SQLite's file layer with counters, faults and a memory of what was synced. Every connection opened while one lives
/// goes through it; close them all before it ends. At most one at a time, and not used by two threads at once.
class FaultingVfs {
 public:
  FaultingVfs();
  ~FaultingVfs();
  FaultingVfs(const FaultingVfs&) = delete;
  FaultingVfs& operator=(const FaultingVfs&) = delete;

  /// Makes the `ordinal`-th `call` from now, counting from 1, give `code` without being carried out.
  void failAt(FileCall call, int ordinal, FaultSpan span, int code);
  /// Whether there was a fault since failAt().
  bool hasFailed() const noexcept { return failed_; }
  /// Ends the faults.
  void heal() noexcept { failing_.reset(); }

  void resetCounts() noexcept {
    counts_.clear();
    walBytes_ = 0;
  }
  std::int64_t count(FileCall call) const { return counts_.contains(call) ? counts_.at(call) : 0; }
  std::int64_t walBytesWritten() const noexcept { return walBytes_; }

  /// Has every sync remember the file's content from now on, and the files that exist already as they are.
  void rememberSyncs(const std::filesystem::path& folder);
  /// Writes into `folder` what a power cut at this moment would leave of every remembered file: its content at its last
  /// sync.
  void copySyncedFiles(const std::filesystem::path& folder) const;

 private:
  struct File;

  static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* givenFlags);
  static int remove(sqlite3_vfs* vfs, const char* name, int syncDirectory);
  /// The code that this call is to fail with, or SQLITE_OK.
  int takeTurn(FileCall call);
  void rememberSynced(const std::filesystem::path& path);

  sqlite3_vfs* base_;
  sqlite3_vfs shim_;
  std::map<FileCall, std::int64_t> counts_;
  std::int64_t walBytes_ = 0;
  std::optional<FileCall> failing_;
  std::int64_t firstFault_ = 0;
  FaultSpan span_ = FaultSpan::once;
  int code_ = SQLITE_OK;
  bool failed_ = false;
  bool remembersSyncs_ = false;
  std::map<std::filesystem::path, std::string> synced_;
};

} // namespace orvan
