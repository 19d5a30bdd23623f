#pragma once

#include <sqlite3.h>

#include <string>
#include <vector>

namespace orvan {

/// Sees the connections that are opened in this process while it lives, by the hook that SQLite has for extensions: the
/// way to look at a connection that its owner keeps to itself. One at a time, and no connection may be opened on
/// another thread meanwhile.
class ConnectionWatch {
 public:
  ConnectionWatch() { sqlite3_auto_extension(entryPoint()); }
  ~ConnectionWatch() { sqlite3_cancel_auto_extension(entryPoint()); }
  ConnectionWatch(const ConnectionWatch&) = delete;
  ConnectionWatch& operator=(const ConnectionWatch&) = delete;

  /// The connection opened last. Its owner may close it at any time, and it must not be in use elsewhere.
  static sqlite3* latest() noexcept { return latest_; }

 private:
  static int note(sqlite3* connection, const char** /*error*/, const sqlite3_api_routines* /*routines*/) noexcept {
    latest_ = connection;
    return SQLITE_OK;
  }
  /// SQLite takes every entry point under one type and calls it under its own.
  using EntryPoint = void (*)();
  static EntryPoint entryPoint() noexcept {
    return reinterpret_cast<EntryPoint>(note); // NOLINT(clang-diagnostic-cast-function-type-mismatch)
  }

  static inline sqlite3* latest_ = nullptr;
};

/// The texts of the statements that a connection begins, placeholders unfilled, in order. Must end before the
/// connection is closed.
class StatementLog {
 public:
  explicit StatementLog(sqlite3* connection) : connection_(connection) {
    sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, note, &texts_);
  }
  ~StatementLog() { sqlite3_trace_v2(connection_, 0, nullptr, nullptr); }
  StatementLog(const StatementLog&) = delete;
  StatementLog& operator=(const StatementLog&) = delete;

  const std::vector<std::string>& texts() const noexcept { return texts_; }

 private:
  static int note(unsigned /*event*/, void* texts, void* statement, void* /*text*/) {
    static_cast<std::vector<std::string>*>(texts)->emplace_back(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
    return 0;
  }

  sqlite3* connection_;
  std::vector<std::string> texts_;
};

} // namespace orvan
