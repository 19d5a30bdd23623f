#pragma once

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/use_future.hpp>
#include <optional>
#include <type_traits>
#include <utility>

namespace orvan {

/// Where asynchronous work runs: an event loop, a thread pool, or a strand of either.
using Executor = boost::asio::any_io_executor;

/// An asynchronous operation's result. Nothing starts before it is awaited. The awaiting coroutine is resumed on its
/// own executor, whichever executor did the work.
///
/// A program compiled with GCC 12 has to keep some things out of an expression that awaits, because that compiler
/// destroys them twice: aggregates and braced lists (`{...}`, std::array), lambdas that capture anything with a
/// destructor, and a co_await within such braces. Our own values have constructors and are safe. What is not gets a
/// name before, as the reminder's user info here:
///
///     UserInfo marks{{"mark", true}};
///     co_await center->added(NotificationRequest(id, NotificationContent(title, std::move(marks)), trigger));
template <typename Result>
using Task = boost::asio::awaitable<Result>;

/// Asio hands results over in objects that it makes empty first, which our values cannot be.
template <typename Result>
Task<std::optional<Result>> resultInOptional(Task<Result> task) {
  co_return co_await std::move(task);
}

/// Runs `task` on `executor`; the awaiting coroutine continues on its own executor with the result, or with what the
/// task threw.
template <typename Result>
Task<Result> runOn(Executor executor, Task<Result> task) {
  if constexpr (std::is_void_v<Result>) {
    co_await boost::asio::co_spawn(std::move(executor), std::move(task), boost::asio::use_awaitable);
  } else {
    auto wrapped = resultInOptional(std::move(task));
    auto result = co_await boost::asio::co_spawn(std::move(executor), std::move(wrapped), boost::asio::use_awaitable);
    co_return std::move(*result); // NOLINT(bugprone-unchecked-optional-access): a task that did not throw has a result.
  }
}

/// For programs without an event loop: runs `task` on `executor` and waits for its result on this thread; what it
/// throws is thrown here. Must not be called on `executor`'s only thread, which would wait for itself.
template <typename Result>
Result waitFor(const Executor& executor, Task<Result> task) {
  if constexpr (std::is_void_v<Result>) {
    boost::asio::co_spawn(executor, std::move(task), boost::asio::use_future).get();
  } else {
    auto wrapped = resultInOptional(std::move(task));
    return boost::asio::co_spawn(executor, std::move(wrapped), boost::asio::use_future).get().value();
  }
}

} // namespace orvan
