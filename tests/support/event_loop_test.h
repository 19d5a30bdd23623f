#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/in_memory_notification_center.h"
#include "OrvanTestSupport/manual_clock.h"

namespace orvan {

/// An event loop, a clock and a notification centre that a test drives by hand.
class EventLoopTest : public testing::Test {
 protected:
  using Operation = InMemoryNotificationCenter::Operation;

  EventLoopTest() { NotificationCenter::setCurrent(center); }
  ~EventLoopTest() override {
    NotificationCenter::setCurrent(nullptr);
    center->dropHeld();
    clock->dropTimers();
  }

  /// Runs everything that can run; gives the number of turns that took.
  std::size_t settle() {
    loop.restart();
    return loop.poll();
  }

  void advance(std::chrono::nanoseconds duration) {
    clock->advance(duration);
    settle();
  }

  void answerHeld() {
    center->answerHeld();
    settle();
  }

  /// Starts `task` and runs it as far as it gets.
  template <typename Result>
  std::future<Result> start(Task<Result> task) {
    auto future = boost::asio::co_spawn(loop, std::move(task), boost::asio::use_future);
    settle();
    return future;
  }

  template <typename Result>
  static bool isReady(const std::future<Result>& future) {
    return future.wait_for(std::chrono::seconds{0}) == std::future_status::ready;
  }

  /// What `task` gives without time passing.
  template <typename Result>
  Result resultOf(Task<Result> task) {
    auto future = start(std::move(task));
    if (!isReady(future)) {
      throw std::runtime_error("the task waits");
    }
    return future.get();
  }

  static NotificationRequest request(std::string identifier, Instant due, UserInfo userInfo = {}) {
    return NotificationRequest{std::move(identifier), NotificationContent{"Call", std::move(userInfo)},
                               CalendarTrigger{userCalendarComponents(due)}};
  }

  boost::asio::io_context loop;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(*parseInternetDateTime("2026-03-04T09:15:00Z"));
  std::shared_ptr<InMemoryNotificationCenter> center =
      std::make_shared<InMemoryNotificationCenter>(loop.get_executor(), clock);
};

} // namespace orvan
