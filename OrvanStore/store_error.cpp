#include "OrvanStore/store_error.h"

#include <sqlite3.h>

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
    }
    return "unknown fault";
  }
};

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

int StoreError::extendedCode() const noexcept {
  return code().category() == sqliteCategory() ? code().value() : 0;
}

} // namespace orvan
