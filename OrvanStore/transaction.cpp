#include "OrvanStore/transaction.h"

#include <chrono>
#include <thread>

namespace orvan {
namespace {

/// How a connection waits for the write lock. SQLite's own waiting looks only ten times a second after a while; among
/// busy writers, who are without the lock for microseconds at a time, it can miss every chance until its time is up.
class Patience {
 public:
  explicit Patience(Connection& connection)
      : connection_(connection), end_(std::chrono::steady_clock::now() + connection.busyTimeout()) {
    sqlite3_busy_handler(connection_.handle(), wait, this);
  }
  ~Patience() { sqlite3_busy_timeout(connection_.handle(), static_cast<int>(connection_.busyTimeout().count())); }
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;

 private:
  /// SQLite asks after each vain attempt whether to make another one.
  static int wait(void* patience, int /*attempts*/) noexcept {
    const auto now = std::chrono::steady_clock::now();
    if (now >= static_cast<Patience*>(patience)->end_) {
      return 0;
    }
    // The clock's last digits serve as chance, so that those who wait do not all come back at once.
    constexpr auto shortest = std::chrono::microseconds{500};
    constexpr auto spread = std::chrono::milliseconds{2};
    std::this_thread::sleep_for(shortest + now.time_since_epoch() % spread);
    return 1;
  }

  Connection& connection_;
  std::chrono::steady_clock::time_point end_;
};

void beginWriting(Connection& connection) {
  const Patience patience(connection);
  connection.execute("BEGIN IMMEDIATE");
}

} // namespace

Transaction::Transaction(Connection& connection, TransactionKind kind) : connection_(connection) {
  if (kind == TransactionKind::write) {
    beginWriting(connection_);
  } else {
    connection_.execute("BEGIN");
  }
}

Transaction::~Transaction() {
  // SQLite has ended the transaction by itself after some faults (a full disk among them).
  if (!connection_.isInTransaction()) {
    return;
  }
  // Its result tells nothing more: nothing was committed, and the fault that led here is on its way to the caller.
  sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  connection_.execute("COMMIT");
}

} // namespace orvan
