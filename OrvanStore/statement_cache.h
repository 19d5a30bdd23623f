#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <list>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "OrvanStore/statement.h"

namespace orvan {

/// The compiled statements of one connection, found by their text, so that each text is compiled once. Bounded, because
/// some texts vary with the number of their placeholders: the one unused longest makes room.
class StatementCache {
 public:
  StatementCache(sqlite3* connection, std::size_t capacity);

  /// Takes the statement out of the cache, compiling it when it is not there. While it is out, a second request for the
  /// same text compiles another one.
  std::unique_ptr<Statement> take(std::string_view sql);

  /// Puts a statement that take() gave out back, reset.
  void giveBack(std::unique_ptr<Statement> statement) noexcept;

 private:
  using Statements = std::list<std::unique_ptr<Statement>>;

  sqlite3* connection_;
  std::size_t capacity_;
  /// Most recently returned first.
  Statements statements_;
  /// Keys are views of the statements' own texts.
  std::unordered_map<std::string_view, Statements::iterator> byText_;
};

} // namespace orvan
