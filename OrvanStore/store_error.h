#pragma once

#include <sqlite3.h>

#include <string>

#include "OrvanPlatform/error.h"

namespace orvan {

/// Faults that this layer finds itself, beside those SQLite reports.
enum class StoreFault {
  /// A column that must hold text holds a number or a blob.
  columnIsNotText = 1,
  /// A column that must hold text holds NULL.
  columnIsNull,
  /// A statement asked for a row and there was none.
  rowMissing,
  /// The SQLite that this process loaded cannot encrypt: another library came before SQLCipher.
  engineCannotEncrypt,
  /// At the path of an open store lies another file than the one that was opened, or none.
  fileReplaced,
};

std::error_code make_error_code(StoreFault fault) noexcept;

/// SQLite's extended result codes as std::error_code values.
const std::error_category& sqliteCategory() noexcept;

/// What went wrong in the store: the code (SQLite's extended code in sqliteCategory(), or a StoreFault) and the text of
/// the statement at fault. A bound value is never part of it.
class StoreError : public Error {
 public:
  StoreError(std::error_code code, std::string statement);

  /// The fault that SQLite holds ready for `connection`, which may be null when there was no memory to make one.
  static StoreError latestOf(sqlite3* connection, std::string statement);

  /// SQLite's extended result code, or 0 when the fault was found by this layer.
  int extendedCode() const noexcept;
  /// The statement's text with its placeholders, or what was attempted where there was no statement.
  const std::string& statement() const noexcept { return statement_; }

  /// Why the system refused what SQLite asked of it (ENOSPC, EACCES, ...); empty when that was not the cause, or SQLite
  /// does not know.
  std::error_code systemReason() const noexcept { return systemReason_; }

 private:
  std::string statement_;
  std::error_code systemReason_;
};

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::StoreFault> : std::true_type {};
