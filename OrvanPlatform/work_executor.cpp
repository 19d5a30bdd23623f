#include "OrvanPlatform/work_executor.h"

#include <utility>

namespace orvan {

WorkExecutor::WorkExecutor()
    : ownThread_(std::make_unique<boost::asio::thread_pool>(1)), executor_(ownThread_->get_executor()) {}

WorkExecutor::WorkExecutor(Executor executor) : executor_(std::move(executor)) {}

WorkExecutor::~WorkExecutor() {
  if (ownThread_ != nullptr) {
    ownThread_->join();
  }
}

} // namespace orvan
