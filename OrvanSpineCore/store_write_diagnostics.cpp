#include "OrvanSpineCore/store_write_diagnostics.h"

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace orvan {
namespace {

constexpr std::chrono::milliseconds slow{100};

struct Watch {
  StorePool pool;
  StoreDiagnosticSink sink;
};

constexpr std::string_view nameOf(StorePool pool) noexcept {
  switch (pool) {
    case StorePool::application:
      return "application";
    case StorePool::import:
      return "import";
    case StorePool::projection:
      return "projection";
    case StorePool::actions:
      return "actions";
    case StorePool::maintenance:
      return "maintenance";
    case StorePool::relationshipAttention:
      return "relationshipAttention";
  }
  return "unknown";
}

int report(unsigned /*event*/, void* context, void* statement, void* nanoseconds) {
  auto* const finished = static_cast<sqlite3_stmt*>(statement);
  const std::chrono::nanoseconds took{*static_cast<std::int64_t*>(nanoseconds)};
  if (took < slow || sqlite3_stmt_readonly(finished) != 0) {
    return 0;
  }
  const auto& watch = *static_cast<Watch*>(context);
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(took).count();
  try {
    watch.sink("slow write pool=" + std::string{nameOf(watch.pool)} + " ms=" + std::to_string(milliseconds) +
               " statement=" + sqlite3_sql(finished));
  } catch (...) { // NOLINT(bugprone-empty-catch): it must not break the write, and SQLite cannot carry an exception.
  }
  return 0;
}

} // namespace

void StoreWriteDiagnostics::attach(Connection& connection, StorePool pool, StoreDiagnosticSink sink) {
  if (!sink) {
    return;
  }
  auto watch = std::make_shared<Watch>(pool, std::move(sink));
  sqlite3_trace_v2(connection.handle(), SQLITE_TRACE_PROFILE, report, watch.get());
  connection.keep(std::move(watch));
}

} // namespace orvan
