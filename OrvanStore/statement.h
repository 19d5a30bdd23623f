#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvan {

/// A column of a statement's result, found once by its name. A column that the result does not have reads as NULL.
class Column {
 public:
  static constexpr Column absent() noexcept { return Column{-1}; }
  explicit constexpr Column(int index) noexcept : index_(index) {}
  constexpr int index() const noexcept { return index_; }

 private:
  int index_;
};

/// One compiled statement of one connection. Compiled at construction, which throws StoreError when the text is not
/// SQL that the store understands. Belongs to its connection's thread of use and must not outlive the connection.
class Statement {
 public:
  Statement(sqlite3* connection, std::string_view sql);

  const std::string& sql() const noexcept { return sql_; }

  /// Binds to the placeholder at `position`, counting from 1. Text is copied.
  void bind(int position, std::string_view text);
  /// Binds without copying: the text must stay where it is until reset().
  void bindInPlace(int position, std::string_view text);
  void bind(int position, std::int64_t number);
  void bindNull(int position);

  /// Moves to the next row; false after the last one. Throws StoreError.
  bool step();

  /// Ends the current run and forgets the bound values, so that the statement can run again.
  void reset() noexcept;

  Column column(std::string_view name) const noexcept;

  /// Whether the column of the current row holds NULL; an absent column does.
  bool holdsNull(Column column) const noexcept;

  /// The text in a column of the current row; nothing for anything else. A number or a blob where text belongs is
  /// damage, and is never converted. The view holds until the next step or reset. The bytes are as stored: they need
  /// not be UTF-8.
  std::optional<std::string_view> optionalText(Column column) const noexcept;
  std::int64_t integer(Column column) const noexcept;

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };

  void bindText(int position, std::string_view text, sqlite3_destructor_type owner);
  void check(int code) const;

  std::string sql_;
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
  std::vector<std::string> columnNames_;
};

} // namespace orvan
