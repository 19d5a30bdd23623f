#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "OrvanStore/statement.h"
#include "OrvanStore/statement_cache.h"

namespace orvan {

/// One run of a statement: made by Connection::query with its arguments bound, stepped with next(), read by column. The
/// statement goes back to the connection's cache when the Query is destroyed.
///
///     auto rows = connection.query("SELECT id FROM person WHERE id > ?", start);
///     const Column id = rows.column("id");
///     while (rows.next()) {
///       use(rows.optionalText(id));
///     }
class Query {
 public:
  Query(StatementCache& cache, std::string_view sql);
  ~Query();
  Query(Query&& other) noexcept = default;
  Query& operator=(Query&&) = delete;
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  /// Binds to the placeholder at `position`, counting from 1; an absent value binds NULL.
  void bind(int position, std::string_view text) { statement_->bind(position, text); }
  /// The same without a copy: the text must stay where it is until the run ends.
  void bindInPlace(int position, std::string_view text) { statement_->bindInPlace(position, text); }
  void bind(int position, std::integral auto number) { statement_->bind(position, static_cast<std::int64_t>(number)); }
  void bind(int position, std::nullopt_t /*absent*/) { statement_->bindNull(position); }
  template <typename Value>
  void bind(int position, const std::optional<Value>& value) {
    if (value) {
      bind(position, *value);
    } else {
      bind(position, std::nullopt);
    }
  }

  /// Ends the run and forgets the arguments, so that the statement can be bound and run again.
  void restart() noexcept { statement_->reset(); }

  /// Moves to the next row; false after the last one.
  bool next() { return statement_->step(); }

  Column column(std::string_view name) const noexcept { return statement_->column(name); }

  /// Whether the column holds NULL; an absent column does.
  bool holdsNull(Column column) const noexcept { return statement_->holdsNull(column); }

  /// The column's text; nothing for NULL, a number, a blob and an absent column. See Statement::optionalText.
  std::optional<std::string_view> optionalText(Column column) const noexcept {
    return statement_->optionalText(column);
  }

  /// Text that must be there: NULL fails with StoreFault::columnIsNull, a number or a blob with columnIsNotText.
  std::string_view text(Column column) const;
  std::int64_t integer(Column column) const noexcept { return statement_->integer(column); }

 private:
  StatementCache* cache_;
  std::unique_ptr<Statement> statement_;
};

} // namespace orvan
