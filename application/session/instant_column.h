#pragma once

#include <optional>

#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/query.h"

namespace orvan {

/// The moment that a column holds as text; nothing where it holds none, or one that cannot be read.
inline std::optional<Instant> instantIn(const Query& row, Column column) {
  const auto text = row.optionalText(column);
  return text ? parseInternetDateTime(*text) : std::nullopt;
}

} // namespace orvan
