#pragma once

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
    start(arguments...);
    while (query_.next()) {
    }
    query_.restart();
  }

  /// Starts a run whose rows are read from the result, which the next run ends.
  template <typename... Arguments>
  Query& query(const Arguments&... arguments) {
    query_.restart();
    start(arguments...);
    return query_;
  }

 private:
  template <typename... Arguments>
  void start(const Arguments&... arguments) {
    int position = 0;
    (query_.bind(++position, arguments), ...);
  }

  Query query_;
};

} // namespace orvan
