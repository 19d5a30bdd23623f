#pragma once

#include <boost/asio/thread_pool.hpp>
#include <memory>

#include "OrvanPlatform/executor.h"

namespace orvan {

/// The executor that an object's blocking work runs on: one that the application gives, or a single thread of the
/// object's own.
class WorkExecutor {
 public:
  /// A thread of our own. The destructor waits until everything started on it has ended, so it must not run on that
  /// thread.
  WorkExecutor();
  /// The application's, which must outlive what runs on it. The destructor waits for nothing.
  explicit WorkExecutor(Executor executor);
  ~WorkExecutor();
  WorkExecutor(const WorkExecutor&) = delete;
  WorkExecutor& operator=(const WorkExecutor&) = delete;

  const Executor& get() const noexcept { return executor_; }

 private:
  std::unique_ptr<boost::asio::thread_pool> ownThread_;
  Executor executor_;
};

/// Two threads that this process shares, for objects to which the application gives no executor. They start with the
/// first call. When the process exits they are waited for: what runs then ends, what waits is never resumed.
Executor sharedWorkExecutor();

} // namespace orvan
