#pragma once

#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>
#include <functional>
#include <memory>
#include <utility>

#include "OrvanPlatform/executor.h"

namespace orvan {

/// Qt's event loop as a place for asynchronous work: what is given to its executor runs on the thread that made this
/// object, in the order given, once that thread is in its event loop. Coroutines that are started on the executor are
/// resumed there.
///
/// Make it after the application object, and destroy it before that, on the same thread: what still waits is dropped
/// then and never runs, and coroutines among it are unwound. Whatever else may give it work must have ended before.
class QtLoop final : public boost::asio::execution_context {
 public:
  QtLoop();
  ~QtLoop();
  QtLoop(const QtLoop&) = delete;
  QtLoop& operator=(const QtLoop&) = delete;

  /// From any thread.
  Executor executor() noexcept;
  void post(std::move_only_function<void()> work);

 private:
  class Receiver;

  std::unique_ptr<Receiver> receiver_;
};

/// The executor of a QtLoop, in the form that asio asks for.
class QtExecutor {
 public:
  explicit QtExecutor(QtLoop& loop) noexcept : loop_(&loop) {}

  boost::asio::execution_context& query(boost::asio::execution::context_t /*property*/) const noexcept {
    return *loop_;
  }
  static constexpr boost::asio::execution::blocking_t query(boost::asio::execution::blocking_t /*property*/) noexcept {
    return boost::asio::execution::blocking.never;
  }
  QtExecutor require(boost::asio::execution::blocking_t::never_t /*property*/) const noexcept { return *this; }

  template <typename Work>
  void execute(Work&& work) const {
    loop_->post(std::forward<Work>(work));
  }

  bool operator==(const QtExecutor&) const noexcept = default;

 private:
  QtLoop* loop_;
};

/// Runs a task on Qt's thread until it ends. What goes wrong within is the task's own to answer: one that throws ends
/// the program.
void startOn(QtLoop& loop, Task<void> task);

} // namespace orvan
