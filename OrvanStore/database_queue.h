#pragma once

#include <filesystem>
#include <functional>
#include <type_traits>

#include "OrvanPlatform/mutex.h"
#include "OrvanStore/connection.h"
#include "OrvanStore/transaction.h"

namespace orvan {

/// One connection on which every read and write runs in turn. May be called from any thread; a call waits on its own
/// thread until it is its turn. A read or write must not start another one on the same queue: it would wait for itself.
class DatabaseQueue {
 public:
  DatabaseQueue(const std::filesystem::path& file, const ConnectionConfiguration& configuration);

  /// Runs `body(Connection&)` in a read transaction and returns its result.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> read(Body&& body) ORVAN_EXCLUDES(mutex_) {
    const MutexLock turn(mutex_);
    return inTransaction(connection_, TransactionKind::read, body);
  }

  /// Runs `body(Connection&)` in a write transaction, committed when it returns and rolled back when it throws.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> write(Body&& body) ORVAN_EXCLUDES(mutex_) {
    const MutexLock turn(mutex_);
    return inTransaction(connection_, TransactionKind::write, body);
  }

  /// Runs `body(Connection&)` outside any transaction, for what cannot run inside one, such as a checkpoint.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> withoutTransaction(Body&& body) ORVAN_EXCLUDES(mutex_) {
    const MutexLock turn(mutex_);
    return std::invoke(body, connection_);
  }

 private:
  Mutex mutex_;
  Connection connection_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
