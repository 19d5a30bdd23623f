#include "OrvanPlatform/work_executor.h"

#include <openssl/crypto.h>

#include <utility>

namespace orvan {
namespace {

/// The pool itself is never destroyed: with it would go the tasks that wait, and what those hold belongs to an
/// application that has ended.
class SharedThreads {
 public:
  /// OpenSSL keeps something for each thread that reads a store, and frees it when the thread ends, unless it has ended
  /// itself by then. What is there first is destroyed last.
  SharedThreads() { OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CRYPTO_STRINGS, nullptr); }
  ~SharedThreads() {
    pool_->stop();
    pool_->join();
  }
  SharedThreads(const SharedThreads&) = delete;
  SharedThreads& operator=(const SharedThreads&) = delete;

  Executor executor() const { return pool_->get_executor(); }

 private:
  boost::asio::thread_pool* const pool_ = new boost::asio::thread_pool{2};
};

} // namespace

WorkExecutor::WorkExecutor()
    : ownThread_(std::make_unique<boost::asio::thread_pool>(1)), executor_(ownThread_->get_executor()) {}

WorkExecutor::WorkExecutor(Executor executor) : executor_(std::move(executor)) {}

WorkExecutor::~WorkExecutor() {
  if (ownThread_ != nullptr) {
    ownThread_->join();
  }
}

Executor sharedWorkExecutor() {
  static const SharedThreads threads;
  return threads.executor();
}

} // namespace orvan
