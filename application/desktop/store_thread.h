#pragma once

#include <boost/asio/post.hpp>
#include <memory>
#include <type_traits>
#include <utility>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/work_executor.h"
#include "application/session/session.h"

namespace orvan {

/// The user's store on a thread of its own, so that nobody who asks it for something is blocked. What is asked runs in
/// turn.
///
/// The destructor has what was asked for before it done to the end, and then closes the store. That may take as long as
/// others keep the store locked.
class StoreThread {
 public:
  /// Opens nothing yet.
  explicit StoreThread(SessionSettings settings);
  ~StoreThread();
  StoreThread(const StoreThread&) = delete;
  StoreThread& operator=(const StoreThread&) = delete;

  const SessionSettings& settings() const noexcept { return settings_; }

  /// What `work` gives or throws on the store's thread. The awaiting coroutine is resumed on its own executor.
  template <typename Work>
  Task<std::invoke_result_t<Work&, Session&>> ask(Work work) {
    co_return co_await runOn(worker_.get(), perform(*this, std::move(work)));
  }

  /// The same while this thread has nothing of the store open, for what needs the store to itself. What is asked after
  /// it opens the store anew.
  template <typename Work>
  Task<std::invoke_result_t<Work&, const SessionSettings&>> askWhileClosed(Work work) {
    co_return co_await runOn(worker_.get(), performWhileClosed(*this, std::move(work)));
  }

  /// Like ask() without a result, which starts even if the caller's event loop never runs again. It must not throw.
  template <typename Work>
  void post(Work work) {
    boost::asio::post(worker_.get(), [this, work = std::move(work)]() mutable { work(session()); });
  }

  /// Forgets all that is open, so that what is asked next opens the store anew.
  void startAgain();

 private:
  template <typename Work>
  static Task<std::invoke_result_t<Work&, Session&>> perform(StoreThread& store, Work work) {
    co_return work(store.session());
  }

  template <typename Work>
  static Task<std::invoke_result_t<Work&, const SessionSettings&>> performWhileClosed(StoreThread& store, Work work) {
    store.close();
    co_return work(store.settings_);
  }

  /// On the store's thread alone, as is `session_`.
  void close() noexcept;
  Session& session();

  SessionSettings settings_;
  std::unique_ptr<Session> session_;
  WorkExecutor worker_;
};

} // namespace orvan
