#pragma once

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
};

std::error_code make_error_code(StoreFault fault) noexcept;

/// SQLite's extended result codes as std::error_code values.
const std::error_category& sqliteCategory() noexcept;

/// What went wrong in the store: the code (SQLite's extended code in sqliteCategory(), or a StoreFault) and the text of
/// the statement at fault. A bound value is never part of it.
class StoreError : public Error {
 public:
  StoreError(std::error_code code, std::string statement);

  /// SQLite's extended result code, or 0 when the fault was found by this layer.
  int extendedCode() const noexcept;
  /// The statement's text with its placeholders, or what was attempted where there was no statement.
  const std::string& statement() const noexcept { return statement_; }

 private:
  std::string statement_;
};

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::StoreFault> : std::true_type {};
