#include "OrvanStore/statement_cache.h"

#include <utility>

namespace orvan {

StatementCache::StatementCache(sqlite3* connection, std::size_t capacity)
    : connection_(connection), capacity_(capacity) {}

std::unique_ptr<Statement> StatementCache::take(std::string_view sql) {
  const auto found = byText_.find(sql);
  if (found == byText_.end()) {
    return std::make_unique<Statement>(connection_, sql);
  }
  const auto position = found->second;
  byText_.erase(found);
  auto statement = std::move(*position);
  statements_.erase(position);
  return statement;
}

void StatementCache::giveBack(std::unique_ptr<Statement> statement) noexcept {
  statement->reset();
  if (byText_.contains(statement->sql())) {
    return;
  }
  try {
    statements_.push_front(std::move(statement));
    byText_.emplace(statements_.front()->sql(), statements_.begin());
  } catch (const std::bad_alloc&) {
    // A statement that cannot be kept is compiled again next time.
    if (!statements_.empty() && !byText_.contains(statements_.front()->sql())) {
      statements_.pop_front();
    }
    return;
  }
  if (statements_.size() > capacity_) {
    byText_.erase(statements_.back()->sql());
    statements_.pop_back();
  }
}

} // namespace orvan
