#include "OrvanStore/connection.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>

#include "OrvanStore/store_error.h"

namespace orvan {
namespace {

int openFlags(OpenMode mode) noexcept {
  // A connection serves one thread at a time, so SQLite's own mutexes would only cost.
  constexpr int common = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  switch (mode) {
    case OpenMode::readOnly:
      return common | SQLITE_OPEN_READONLY;
    case OpenMode::readWrite:
      return common | SQLITE_OPEN_READWRITE;
    case OpenMode::readWriteCreate:
      return common | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  }
  return common | SQLITE_OPEN_READONLY;
}

/// A plain libsqlite3 that was loaded first answers every call and would write the store in the clear, so this is asked
/// before a file is touched.
void requireEncryptingEngine() {
  if (sqlite3_compileoption_used("HAS_CODEC") == 0) {
    throw StoreError(StoreFault::engineCannotEncrypt, "opening the store file");
  }
}

/// SQLCipher writes lines of its own to standard error when a page does not decrypt. The fault reaches the caller as a
/// StoreError; whether and how to tell the user is the program's to decide. The setting is the process's, and holds
/// only when it is made after a first key was set, which puts back SQLCipher's own.
void silenceEngine() noexcept {
  sqlite3* any = nullptr;
  if (sqlite3_open_v2(":memory:", &any, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
    sqlite3_key(any, "any", 3);
    sqlite3_exec(any, "PRAGMA cipher_log_level = NONE", nullptr, nullptr, nullptr);
  }
  sqlite3_close(any);
}

void silenceEngineOnce() {
  static std::once_flag once;
  std::call_once(once, silenceEngine);
}

/// SQLite would create the file with the process's default mode; the log and shared-memory files take over the mode of
/// the file they belong to.
void createPrivately(const std::filesystem::path& file) noexcept {
  constexpr mode_t ownerOnly = 0600;
  const int descriptor = open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, ownerOnly);
  if (descriptor >= 0) {
    close(descriptor);
  }
}

} // namespace

Connection::Connection(const std::filesystem::path& file, const ConnectionConfiguration& configuration)
    : busyTimeout_(configuration.busyTimeout) {
  requireEncryptingEngine();
  silenceEngineOnce();
  if (configuration.mode == OpenMode::readWriteCreate) {
    createPrivately(file);
  }
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &opened, openFlags(configuration.mode), nullptr);
  handle_.reset(opened);
  if (code != SQLITE_OK) {
    throw StoreError::latestOf(opened, "opening the store file");
  }
  sqlite3_db_config(opened, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, configuration.checkpointsOnClose ? 0 : 1, nullptr);
  sqlite3_busy_timeout(opened, static_cast<int>(busyTimeout_.count()));
  statements_ = std::make_unique<StatementCache>(opened, configuration.statementCacheCapacity);
  if (configuration.prepare) {
    configuration.prepare(*this);
    busyTimeout_ = std::chrono::milliseconds{fetchOptionalInteger("PRAGMA busy_timeout").value_or(0)};
  }
  if (configuration.pageCacheCeilingKiB > 0) {
    setPageCacheCeiling(configuration.pageCacheCeilingKiB);
  }
}

FileIdentity Connection::fileIdentity() const {
  struct stat status{};
  int wasMoved = 0;
  // SQLite compares the path with the file it has open; looked at in this order, both are the file at the path.
  const bool isThere = stat(sqlite3_db_filename(handle_.get(), "main"), &status) == 0;
  sqlite3_file_control(handle_.get(), "main", SQLITE_FCNTL_HAS_MOVED, &wasMoved);
  if (!isThere || wasMoved != 0) {
    throw StoreError(StoreFault::fileReplaced, "looking at the store file");
  }
  return {status.st_dev, status.st_ino};
}

void Connection::setPageCacheCeiling(std::int64_t kiB) {
  executeScript("PRAGMA cache_size = -" + std::to_string(kiB));
}

void Connection::key(std::span<const unsigned char> bytes) {
  const int code = sqlite3_key(handle_.get(), bytes.data(), static_cast<int>(bytes.size()));
  if (code != SQLITE_OK) {
    throw StoreError({code, sqliteCategory()}, "keying the connection");
  }
}

Query Connection::queryWithTexts(std::string_view sql, std::span<const std::string> arguments) {
  Query started(*statements_, sql);
  int position = 0;
  for (const auto& argument : arguments) {
    started.bind(++position, std::string_view{argument});
  }
  return started;
}

void Connection::executeScript(std::string_view script) {
  const std::string terminated{script};
  if (sqlite3_exec(handle_.get(), terminated.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw StoreError::latestOf(handle_.get(), terminated);
  }
}

} // namespace orvan
