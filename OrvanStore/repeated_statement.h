#pragma once

#include <concepts>
#include <optional>
#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

/// A statement that is run many times in a row with other arguments, for bulk writes: it is looked up among the
/// connection's statements once. Must not outlive the transaction it runs in.
class RepeatedStatement {
 public:
  RepeatedStatement(Connection& connection, std::string_view sql) : query_(connection.query(sql)) {}

  /// Runs the statement to its end; rows it may yield are passed over.
  template <typename... Arguments>
  void execute(const Arguments&... arguments) {
    int position = 0;
    (bindInPlace(++position, arguments), ...);
    while (query_.next()) {
    }
    query_.restart();
  }

  /// Starts a run whose rows are read from the result, which the next run ends.
  template <typename... Arguments>
  Query& query(const Arguments&... arguments) {
    query_.restart();
    int position = 0;
    (query_.bind(++position, arguments), ...);
    return query_;
  }

 private:
  // The arguments outlive the run, so that their texts need not be copied.
  void bindInPlace(int position, std::string_view text) { query_.bindInPlace(position, text); }
  void bindInPlace(int position, std::integral auto number) { query_.bind(position, number); }
  template <typename Value>
  void bindInPlace(int position, const std::optional<Value>& value) {
    if (value) {
      bindInPlace(position, *value);
    } else {
      query_.bind(position, std::nullopt);
    }
  }

  Query query_;
};

} // namespace orvan
