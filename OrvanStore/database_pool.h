#pragma once

#include <condition_variable>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <type_traits>
#include <vector>

#include "OrvanPlatform/mutex.h"
#include "OrvanStore/connection.h"
#include "OrvanStore/database_queue.h"
#include "OrvanStore/transaction.h"

namespace orvan {

/// One writer and several readers on one file in write-ahead-log mode: writes run one at a time, reads run beside them
/// and see the last committed state. May be called from any thread; a call waits on its own thread for its connection.
///
/// The writer is opened at once. A reader is opened when a read finds none idle, and kept: keying a connection takes
/// far longer than a read. All are connections to the file that lay at the path when the pool was made: a relative path
/// counts from the folder that was current then, and a reader that finds another file there fails with
/// StoreFault::fileReplaced.
class DatabasePool {
 public:
  struct Configuration {
    ConnectionConfiguration connection;
    std::size_t mostReaders = 4;
  };

  /// Opens the writer. `configuration.connection.prepare` must leave the file in write-ahead-log mode; it runs on every
  /// connection, the readers included, which are opened read-only.
  DatabasePool(const std::filesystem::path& file, Configuration configuration);

  /// Runs `body(Connection&)` in a read transaction on a reader. When all readers are busy and no more may be opened,
  /// it waits for one.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> read(Body&& body) {
    const ReaderLease reader(*this);
    return inTransaction(reader.connection(), TransactionKind::read, body);
  }

  /// Opens a reader unless one is idle, so that what keeps one from opening can be told from a fault of the reading.
  void openReader() { const ReaderLease opened(*this); }

  /// Runs `body(Connection&)` in a read transaction on the writer: for checks while opening, when no reader is open
  /// yet.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> readOnWriter(Body&& body) {
    return writer_.read(body);
  }

  /// Runs `body(Connection&)` in a write transaction on the writer, committed when it returns and rolled back when it
  /// throws. Must not be called from within another write of the same pool: it would wait for itself.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> write(Body&& body) {
    return writer_.write(body);
  }

  /// Runs `body(Connection&)` on the writer outside any transaction.
  template <typename Body>
  std::invoke_result_t<Body&, Connection&> withoutTransaction(Body&& body) {
    return writer_.withoutTransaction(body);
  }

  const std::filesystem::path& file() const noexcept { return file_; }

 private:
  /// A reader for the duration of one read.
  class ReaderLease {
   public:
    explicit ReaderLease(DatabasePool& pool) : pool_(pool), reader_(pool.takeReader()) {}
    ~ReaderLease() { pool_.giveBack(std::move(reader_)); }
    ReaderLease(const ReaderLease&) = delete;
    ReaderLease& operator=(const ReaderLease&) = delete;
    Connection& connection() const noexcept { return *reader_; }

   private:
    DatabasePool& pool_;
    std::unique_ptr<Connection> reader_;
  };

  std::unique_ptr<Connection> takeReader() ORVAN_EXCLUDES(mutex_);
  std::unique_ptr<Connection> makeReader() const;
  /// An idle reader, or nothing after counting one more that the caller is to open.
  std::unique_ptr<Connection> takeIdleReaderOrReserve() ORVAN_EXCLUDES(mutex_);
  void giveBack(std::unique_ptr<Connection> reader) noexcept ORVAN_EXCLUDES(mutex_);
  void dropReservation() noexcept ORVAN_EXCLUDES(mutex_);

  const std::filesystem::path file_;
  const Configuration configuration_;
  DatabaseQueue writer_;
  const FileIdentity identity_;

  Mutex mutex_;
  std::condition_variable_any readerReturned_;
  std::vector<std::unique_ptr<Connection>> idleReaders_ ORVAN_GUARDED_BY(mutex_);
  std::size_t readers_ ORVAN_GUARDED_BY(mutex_) = 0;
};

} // namespace orvan
