#pragma once

#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace orvan {

/// The calls to the file system that can be counted and made to fail.
enum class FileCall { open, read, write, sync, truncate, remove };
inline constexpr std::size_t fileCallKinds = 6;

enum class FaultSpan { once, fromThenOn };

/// SQLite's file layer with counters, faults and a memory of what was synced. Every connection opened while one lives
/// goes through it; close them all before it ends. At most one at a time.
class FaultingVfs {
 public:
  FaultingVfs();
  ~FaultingVfs();
  FaultingVfs(const FaultingVfs&) = delete;
  FaultingVfs& operator=(const FaultingVfs&) = delete;

  /// Makes the `ordinal`-th `call` from now, counting from 1, give `code` without being carried out.
  void failAt(FileCall call, int ordinal, FaultSpan span, int code);
  /// Whether there was a fault since failAt().
  bool hasFailed() const;
  /// Ends the faults.
  void heal();

  void resetCounts();
  std::int64_t count(FileCall call) const;
  std::int64_t walBytesWritten() const;

  /// Has every sync remember the file's content from now on, and the files that exist already as they are.
  void rememberSyncs(const std::filesystem::path& folder);
  /// Writes into `folder` what a power cut at this moment would leave of every remembered file: its content at its last
  /// sync.
  void copySyncedFiles(const std::filesystem::path& folder) const;

 private:
  struct Shim;
  struct File;
  struct Methods;

  /// The code that this call is to fail with, if it is its turn.
  std::optional<int> takeTurn(FileCall call);
  void addWalBytes(std::int64_t length);
  void rememberSynced(const std::filesystem::path& path);
  void forget(const std::filesystem::path& path);

  mutable std::mutex mutex_;
  sqlite3_vfs* base_;
  std::unique_ptr<Shim> shim_;
  std::array<std::int64_t, fileCallKinds> counts_{};
  std::int64_t walBytes_ = 0;
  FileCall failing_ = FileCall::open;
  std::optional<int> callsUntilFault_;
  FaultSpan span_ = FaultSpan::once;
  int code_ = SQLITE_IOERR;
  bool failed_ = false;
  bool remembersSyncs_ = false;
  std::map<std::filesystem::path, std::vector<char>> synced_;
};

} // namespace orvan
