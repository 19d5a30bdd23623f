#include "OrvanStore/query.h"

#include "OrvanStore/store_error.h"

namespace orvan {

Query::Query(StatementCache& cache, std::string_view sql) : cache_(&cache), statement_(cache.take(sql)) {}

Query::~Query() {
  if (statement_ != nullptr) {
    cache_->giveBack(std::move(statement_));
  }
}

std::string_view Query::text(Column column) const {
  const auto found = optionalText(column);
  if (!found) {
    throw StoreError(holdsNull(column) ? StoreFault::columnIsNull : StoreFault::columnIsNotText, statement_->sql());
  }
  return *found;
}

} // namespace orvan
