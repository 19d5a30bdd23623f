#pragma once

#include <functional>
#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

/// Which part of the product a connection belongs to; diagnostics carry it.
enum class StorePool {
  application,
  import,
  projection,
  actions,
  maintenance,
  relationshipAttention,
};

/// Takes one line of diagnostic text: the pool, how long a statement took, and the statement's text with its
/// placeholders. Bound values are never part of it. Called on the thread that uses the connection.
using StoreDiagnosticSink = std::function<void(std::string_view)>;

/// Tells of slow writes while a connection is open.
class StoreWriteDiagnostics {
 public:
  StoreWriteDiagnostics() = delete;

  /// From now on each statement on `connection` that may write and takes a tenth of a second or more is reported to
  /// `sink`. Without a sink nothing is installed and nothing costs.
  static void attach(Connection& connection, StorePool pool, StoreDiagnosticSink sink);
};

} // namespace orvan
