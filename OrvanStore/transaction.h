#pragma once

#include <functional>
#include <type_traits>

#include "OrvanStore/connection.h"

namespace orvan {

enum class TransactionKind {
  /// All reads see one state of the store.
  read,
  /// Takes the write lock at once. A read that turned into a write later would fail when another writer came between,
  /// whatever the busy timeout.
  write,
};

/// A transaction for a scope: rolled back at the end unless commit() was called.
class Transaction {
 public:
  Transaction(Connection& connection, TransactionKind kind);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Ends the transaction. When it throws, nothing was committed and the transaction is rolled back.
  void commit();

 private:
  Connection& connection_;
};

/// Runs `body(connection)` in a transaction: commits and returns its result, or rolls back and passes its exception on.
template <typename Body>
std::invoke_result_t<Body&, Connection&> inTransaction(Connection& connection, TransactionKind kind, Body&& body) {
  Transaction transaction(connection, kind);
  if constexpr (std::is_void_v<std::invoke_result_t<Body&, Connection&>>) {
    std::invoke(body, connection);
    transaction.commit();
  } else {
    auto result = std::invoke(body, connection);
    transaction.commit();
    return result;
  }
}

} // namespace orvan
