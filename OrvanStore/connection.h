#pragma once

#include <sqlite3.h>
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanStore/query.h"
#include "OrvanStore/statement_cache.h"

namespace orvan {

class Connection;

enum class OpenMode {
  /// SQLite's read-only flag; the file must exist.
  readOnly,
  /// The file must exist.
  readWrite,
  /// The file is created, readable by its owner alone, when it is missing.
  readWriteCreate,
};

/// How connections are opened. A value; copy it and change what differs.
struct ConnectionConfiguration {
  OpenMode mode = OpenMode::readWriteCreate;

  /// Runs on every new connection before anything else does: keying and the owner's own settings. What it throws ends
  /// the opening. May be called from any thread that opens a connection.
  std::function<void(Connection&)> prepare;

  /// In force from the moment of opening, before `prepare` runs, so that opening while another process recovers the
  /// write-ahead log waits instead of failing. `prepare` may set another one.
  std::chrono::milliseconds busyTimeout{5000};

  /// How much memory the connection's page cache may take, set after `prepare`; that reads the store's schema, and so
  /// fails under a wrong key. SQLite's own 2 MB would have most pages of a person's history read and decrypted several
  /// times over. 0 leaves SQLite's setting.
  std::int64_t pageCacheCeilingKiB = std::int64_t{64} * 1024;

  /// Whether the last connection to close moves the write-ahead log into the store file, as SQLite does by itself.
  bool checkpointsOnClose = true;

  /// How many compiled statements a connection keeps.
  std::size_t statementCacheCapacity = 128;
};

/// Which file it is, whatever its name.
struct FileIdentity {
  dev_t device = 0;
  ino_t number = 0;

  friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

/// One connection to a store file. Used by one thread at a time; DatabaseQueue and DatabasePool see to that. Every
/// operation throws StoreError when SQLite reports a fault.
///
/// The first connection of a process turns off SQLCipher's own log for the whole process: it would write to standard
/// error whenever a page does not decrypt. A program that wants it turns it on again after that, with "PRAGMA
/// cipher_log_level".
class Connection {
 public:
  /// Opens the file and prepares the connection as `configuration` says.
  Connection(const std::filesystem::path& file, const ConnectionConfiguration& configuration);

  /// Hands the bytes to SQLCipher as this connection's key. Must come before any statement. The caller zeroes its
  /// bytes.
  void key(std::span<const unsigned char> bytes);

  /// How much memory the page cache may take from now on. Reads the store's schema.
  void setPageCacheCeiling(std::int64_t kiB);

  /// Starts a statement with its positional arguments: text, integers, std::nullopt or optional text for NULL.
  template <typename... Arguments>
  [[nodiscard]] Query query(std::string_view sql, const Arguments&... arguments) {
    Query started(*statements_, sql);
    bindEach(started, std::index_sequence_for<Arguments...>{}, arguments...);
    return started;
  }

  /// The same with as many text arguments as there are at run time.
  [[nodiscard]] Query queryWithTexts(std::string_view sql, std::span<const std::string> arguments);

  /// Runs a statement to its end; rows it may yield are passed over.
  template <typename... Arguments>
  void execute(std::string_view sql, const Arguments&... arguments) {
    Query started = query(sql, arguments...);
    while (started.next()) {
    }
  }

  /// Runs several statements without arguments, separated by semicolons. None of them is kept compiled.
  void executeScript(std::string_view script);

  /// The first column of the first row; nothing when there is no row or it does not hold text.
  template <typename... Arguments>
  std::optional<std::string> fetchOptionalText(std::string_view sql, const Arguments&... arguments) {
    Query started = query(sql, arguments...);
    if (!started.next()) {
      return std::nullopt;
    }
    const auto text = started.optionalText(Column{0});
    return text ? std::optional<std::string>{*text} : std::nullopt;
  }

  /// The first column of the first row as an integer; nothing when there is no row.
  template <typename... Arguments>
  std::optional<std::int64_t> fetchOptionalInteger(std::string_view sql, const Arguments&... arguments) {
    Query started = query(sql, arguments...);
    return started.next() ? std::optional<std::int64_t>{started.integer(Column{0})} : std::nullopt;
  }

  /// How many rows the last INSERT, UPDATE or DELETE touched.
  std::int64_t changes() const noexcept { return sqlite3_changes64(handle_.get()); }

  /// Keeps `companion` for as long as the connection is open: what SQLite calls back into.
  void keep(std::shared_ptr<void> companion) { companions_.push_back(std::move(companion)); }

  /// How long the connection waits for the locks of others, as its preparation left it.
  std::chrono::milliseconds busyTimeout() const noexcept { return busyTimeout_; }

  /// The file that is open. Throws StoreFault::fileReplaced when it is no longer the one at its path.
  FileIdentity fileIdentity() const;

  bool isInTransaction() const noexcept { return sqlite3_get_autocommit(handle_.get()) == 0; }

  /// SQLite's handle, for diagnostics. The connection keeps it.
  sqlite3* handle() const noexcept { return handle_.get(); }

 private:
  struct Closer {
    void operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }
  };

  template <std::size_t... Indices, typename... Arguments>
  static void bindEach(Query& query, std::index_sequence<Indices...> /*indices*/, const Arguments&... arguments) {
    (query.bind(static_cast<int>(Indices) + 1, arguments), ...);
  }

  std::vector<std::shared_ptr<void>> companions_;
  std::unique_ptr<sqlite3, Closer> handle_;
  /// Destroyed first: its statements belong to the handle.
  std::unique_ptr<StatementCache> statements_;
  std::chrono::milliseconds busyTimeout_;
};

} // namespace orvan
