#include "OrvanStore/store_error.h"

#include <utility>

namespace orvan {
namespace {

class SqliteCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "sqlite"; }
  std::string message(int code) const override { return sqlite3_errstr(code); }
};

class StoreFaultCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "store"; }
  std::string message(int code) const override {
    switch (static_cast<StoreFault>(code)) {
      case StoreFault::columnIsNotText:
        return "a column that must hold text holds something else";
      case StoreFault::columnIsNull:
        return "a column that must hold text holds NULL";
      case StoreFault::rowMissing:
        return "a row that must exist is missing";
      case StoreFault::engineCannotEncrypt:
        return "the loaded SQLite is not SQLCipher";
      case StoreFault::fileReplaced:
        return "the store file was replaced while it was open";
    }
    return "unknown fault";
  }
};

/// Only a call to the file system that failed has a reason of the system's: for other faults SQLite keeps an older one.
std::error_code systemReasonOf(int sqliteCode, sqlite3* connection) noexcept {
  const int primary = sqliteCode & 0xff;
  const bool isOfTheFileSystem = primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN;
  return {isOfTheFileSystem ? sqlite3_system_errno(connection) : 0, std::generic_category()};
}

} // namespace

const std::error_category& sqliteCategory() noexcept {
  static const SqliteCategory category;
  return category;
}

std::error_code make_error_code(StoreFault fault) noexcept {
  static const StoreFaultCategory category;
  return {static_cast<int>(fault), category};
}

StoreError::StoreError(std::error_code code, std::string statement)
    : Error(code, statement), statement_(std::move(statement)) {}

StoreError StoreError::latestOf(sqlite3* connection, std::string statement) {
  const int code = sqlite3_extended_errcode(connection);
  StoreError error({code, sqliteCategory()}, std::move(statement));
  error.systemReason_ = systemReasonOf(code, connection);
  return error;
}

int StoreError::extendedCode() const noexcept {
  return code().category() == sqliteCategory() ? code().value() : 0;
}

} // namespace orvan
