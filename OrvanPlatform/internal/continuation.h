#pragma once

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/execution/outstanding_work.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/prefer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <functional>
#include <utility>

#include "OrvanPlatform/executor.h"

namespace orvan::internal {

/// Where one suspended coroutine goes on. Whoever holds it owes it exactly one resume(); dropping it instead destroys
/// the coroutine without running the rest of it.
///
/// While it is held, the coroutine's executor counts it as work, so an event loop does not end under a parked
/// coroutine. Movable, and may be resumed from any thread. It must not outlive the executor's event loop.
template <typename Result>
class Continuation {
 public:
  explicit Continuation(std::move_only_function<void(Result)> resume) : resume_(std::move(resume)) {}

  /// Lets the coroutine go on with `result` in a turn of its own on its own executor, never inside this call: a lock
  /// may not be held across it all the same, since another thread may run that turn at once.
  void resume(Result result) { std::exchange(resume_, nullptr)(std::move(result)); }

 private:
  std::move_only_function<void(Result)> resume_;
};

/// Suspends the awaiting coroutine, hands its Continuation to `park`, and gives what it is resumed with.
template <typename Result, typename Park>
Task<Result> suspended(Park park) {
  auto start = [park = std::move(park)](auto handler) mutable {
    // The coroutine, and this lambda with it, may be gone as soon as `park` has shown the continuation to another
    // thread: what `park` still needs then must lie on this thread's stack.
    auto parking = std::move(park);
    auto executor = boost::asio::prefer(boost::asio::get_associated_executor(handler),
                                        boost::asio::execution::outstanding_work.tracked);
    parking(Continuation<Result>{[handler = std::move(handler), executor = std::move(executor)](Result result) mutable {
      boost::asio::post(executor, [handler = std::move(handler), result = std::move(result)]() mutable {
        std::move(handler)(std::move(result));
      });
    }});
  };
  return boost::asio::async_initiate<const boost::asio::use_awaitable_t<Executor>&, void(Result)>(
      std::move(start), boost::asio::use_awaitable);
}

} // namespace orvan::internal
