#include "tests/support/connection_watch.h"

namespace orvan {
namespace {

sqlite3* latestConnection = nullptr;

int noteConnection(sqlite3* connection, const char** /*error*/, const sqlite3_api_routines* /*routines*/) {
  latestConnection = connection;
  return SQLITE_OK;
}

/// SQLite takes every entry point under one type and calls it under its own.
using EntryPoint = void (*)();

EntryPoint entryPoint() noexcept {
  return reinterpret_cast<EntryPoint>(noteConnection); // NOLINT(clang-diagnostic-cast-function-type-mismatch)
}

int noteStatement(unsigned /*event*/, void* texts, void* statement, void* /*text*/) {
  static_cast<std::vector<std::string>*>(texts)->emplace_back(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
  return 0;
}

} // namespace

ConnectionWatch::ConnectionWatch() {
  sqlite3_auto_extension(entryPoint());
}

ConnectionWatch::~ConnectionWatch() {
  sqlite3_cancel_auto_extension(entryPoint());
}

sqlite3* ConnectionWatch::latest() noexcept {
  return latestConnection;
}

StatementLog::StatementLog(sqlite3* connection) : connection_(connection) {
  sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, noteStatement, &texts_);
}

StatementLog::~StatementLog() {
  sqlite3_trace_v2(connection_, 0, nullptr, nullptr);
}

} // namespace orvan
