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
  ConnectionWatch();
  ~ConnectionWatch();
  ConnectionWatch(const ConnectionWatch&) = delete;
  ConnectionWatch& operator=(const ConnectionWatch&) = delete;

  /// The connection opened last. Its owner may close it at any time, and it must not be in use elsewhere.
  static sqlite3* latest() noexcept;
};

/// The texts of the statements that a connection begins, placeholders unfilled, in order. Must end before the
/// connection is closed.
class StatementLog {
 public:
  explicit StatementLog(sqlite3* connection);
  ~StatementLog();
  StatementLog(const StatementLog&) = delete;
  StatementLog& operator=(const StatementLog&) = delete;

  const std::vector<std::string>& texts() const noexcept { return texts_; }

 private:
  sqlite3* connection_;
  std::vector<std::string> texts_;
};

} // namespace orvan
