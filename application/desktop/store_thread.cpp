#include "application/desktop/store_thread.h"

namespace orvan {

StoreThread::StoreThread(SessionSettings settings) : settings_(std::move(settings)) {}

// NOLINTNEXTLINE(bugprone-exception-escape): only for want of memory, and then there is no way on.
StoreThread::~StoreThread() {
  boost::asio::post(worker_.get(), [this] { close(); });
}

void StoreThread::startAgain() {
  boost::asio::post(worker_.get(), [this] { session_.reset(); });
}

void StoreThread::close() noexcept {
  if (session_ != nullptr) {
    session_->finish();
    session_.reset();
  }
}

Session& StoreThread::session() {
  if (session_ == nullptr) {
    session_ = std::make_unique<Session>(settings_);
  }
  return *session_;
}

} // namespace orvan
