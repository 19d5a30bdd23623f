#include "OrvanStore/database_pool.h"

#include <algorithm>
#include <utility>

namespace orvan {

DatabasePool::DatabasePool(std::filesystem::path file, Configuration configuration)
    : file_(std::move(file)), configuration_(std::move(configuration)), writer_(file_, configuration_.connection) {
  const MutexLock lock(mutex_);
  idleReaders_.reserve(std::max<std::size_t>(configuration_.mostReaders, 1));
}

std::unique_ptr<Connection> DatabasePool::takeReader() {
  if (auto reader = takeIdleReaderOrReserve()) {
    return reader;
  }
  try {
    auto readOnly = configuration_.connection;
    readOnly.mode = OpenMode::readOnly;
    return std::make_unique<Connection>(file_, readOnly);
  } catch (...) {
    dropReservation();
    throw;
  }
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
