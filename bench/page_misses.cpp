#include "page_misses.h"

#include <sqlite3.h>

#include <mutex>
#include <set>
#include <string_view>

namespace orvan::bench {
namespace {

std::uintmax_t missesOf(sqlite3* connection) {
  int count = 0;
  int highest = 0;
  sqlite3_db_status(connection, SQLITE_DBSTATUS_CACHE_MISS, &count, &highest, 0);
  return static_cast<std::uintmax_t>(count);
}

/// A session opens connections on several threads at once.
struct Connections {
  std::mutex mutex;
  std::set<sqlite3*> open;
  std::uintmax_t missesOfClosed = 0;
};

Connections& connections() {
  static Connections all;
  return all;
}

int noteClosing(unsigned /*event*/, void* /*context*/, void* connection, void* /*unused*/) {
  auto* const closing = static_cast<sqlite3*>(connection);
  auto& all = connections();
  const std::scoped_lock lock(all.mutex);
  all.missesOfClosed += missesOf(closing);
  all.open.erase(closing);
  return 0;
}

int noteOpening(sqlite3* connection, char** /*error*/, const void* /*api*/) {
  sqlite3_trace_v2(connection, SQLITE_TRACE_CLOSE, noteClosing, nullptr);
  auto& all = connections();
  const std::scoped_lock lock(all.mutex);
  all.open.insert(connection);
  return SQLITE_OK;
}

} // namespace

void countPageMisses() {
  sqlite3_auto_extension(reinterpret_cast<void (*)()>(noteOpening));
}

std::uintmax_t pageMisses() {
  auto& all = connections();
  const std::scoped_lock lock(all.mutex);
  auto misses = all.missesOfClosed;
  for (auto* const connection : all.open) {
    misses += missesOf(connection);
  }
  return misses;
}

} // namespace orvan::bench
