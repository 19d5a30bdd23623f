#include "OrvanStore/database_pool.h"

#include <algorithm>
#include <utility>

#include "OrvanStore/store_error.h"

namespace orvan {

DatabasePool::DatabasePool(const std::filesystem::path& file, Configuration configuration)
    : file_(std::filesystem::absolute(file)),
      configuration_(std::move(configuration)),
      writer_(file_, configuration_.connection),
      identity_(writer_.withoutTransaction([](const Connection& writer) { return writer.fileIdentity(); })) {
  const MutexLock lock(mutex_);
  idleReaders_.reserve(std::max<std::size_t>(configuration_.mostReaders, 1));
}

std::unique_ptr<Connection> DatabasePool::takeReader() {
  if (auto reader = takeIdleReaderOrReserve()) {
    return reader;
  }
  try {
    return makeReader();
  } catch (...) {
    dropReservation();
    throw;
  }
}

std::unique_ptr<Connection> DatabasePool::makeReader() const {
  auto readOnly = configuration_.connection;
  readOnly.mode = OpenMode::readOnly;
  auto reader = std::make_unique<Connection>(file_, readOnly);
  if (reader->fileIdentity() != identity_) {
    throw StoreError(StoreFault::fileReplaced, "opening the store file once more");
  }
  return reader;
}

std::unique_ptr<Connection> DatabasePool::takeIdleReaderOrReserve() {
  const MutexLock lock(mutex_);
  while (idleReaders_.empty()) {
    if (readers_ < std::max<std::size_t>(configuration_.mostReaders, 1)) {
      ++readers_;
      return nullptr;
    }
    readerReturned_.wait(mutex_);
  }
  auto reader = std::move(idleReaders_.back());
  idleReaders_.pop_back();
  return reader;
}

void DatabasePool::giveBack(std::unique_ptr<Connection> reader) noexcept {
  {
    const MutexLock lock(mutex_);
    idleReaders_.push_back(std::move(reader));
  }
  readerReturned_.notify_one();
}

void DatabasePool::dropReservation() noexcept {
  {
    const MutexLock lock(mutex_);
    --readers_;
  }
  readerReturned_.notify_one();
}

} // namespace orvan
