#include "OrvanStore/statement.h"

#include <algorithm>

#include "OrvanStore/store_error.h"

namespace orvan {

Statement::Statement(sqlite3* connection, std::string_view sql) : sql_(sql) {
  sqlite3_stmt* compiled = nullptr;
  const int code = sqlite3_prepare_v3(connection, sql_.data(), static_cast<int>(sql_.size()), SQLITE_PREPARE_PERSISTENT,
                                      &compiled, nullptr);
  handle_.reset(compiled);
  if (code != SQLITE_OK) {
    throw StoreError::latestOf(connection, sql_);
  }
  const int columns = sqlite3_column_count(compiled);
  columnNames_.reserve(static_cast<std::size_t>(columns));
  for (int index = 0; index < columns; ++index) {
    columnNames_.emplace_back(sqlite3_column_name(compiled, index));
  }
}

void Statement::bind(int position, std::string_view text) {
  bindText(position, text, SQLITE_TRANSIENT);
}

void Statement::bindInPlace(int position, std::string_view text) {
  bindText(position, text, SQLITE_STATIC);
}

void Statement::bindText(int position, std::string_view text, sqlite3_destructor_type owner) {
  // An empty view may hold a null pointer, which would bind NULL.
  const char* bytes = text.empty() ? "" : text.data();
  check(sqlite3_bind_text64(handle_.get(), position, bytes, text.size(), owner, SQLITE_UTF8));
}

void Statement::bind(int position, std::int64_t number) {
  check(sqlite3_bind_int64(handle_.get(), position, number));
}

void Statement::bindNull(int position) {
  check(sqlite3_bind_null(handle_.get(), position));
}

bool Statement::step() {
  const int code = sqlite3_step(handle_.get());
  if (code == SQLITE_ROW) {
    return true;
  }
  if (code != SQLITE_DONE) {
    throw StoreError::latestOf(sqlite3_db_handle(handle_.get()), sql_);
  }
  return false;
}

void Statement::reset() noexcept {
  sqlite3_reset(handle_.get());
  sqlite3_clear_bindings(handle_.get());
}

Column Statement::column(std::string_view name) const noexcept {
  const auto found = std::ranges::find(columnNames_, name);
  return found == columnNames_.end() ? Column::absent() : Column{static_cast<int>(found - columnNames_.begin())};
}

bool Statement::holdsNull(Column column) const noexcept {
  return column.index() < 0 || sqlite3_column_type(handle_.get(), column.index()) == SQLITE_NULL;
}

std::optional<std::string_view> Statement::optionalText(Column column) const noexcept {
  sqlite3_stmt* const handle = handle_.get();
  // Asked for first, because reading any other value as text would convert it.
  if (column.index() < 0 || sqlite3_column_type(handle, column.index()) != SQLITE_TEXT) {
    return std::nullopt;
  }
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(handle, column.index()));
  return std::string_view{bytes, static_cast<std::size_t>(sqlite3_column_bytes(handle, column.index()))};
}

std::int64_t Statement::integer(Column column) const noexcept {
  return column.index() < 0 ? 0 : sqlite3_column_int64(handle_.get(), column.index());
}

void Statement::check(int code) const {
  if (code != SQLITE_OK) {
    throw StoreError::latestOf(sqlite3_db_handle(handle_.get()), sql_);
  }
}

} // namespace orvan
