#pragma once

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <functional>

#include "tests/support/private_bus.h"
#include "tests/support/test_store.h"

namespace orvan {

/// A message bus of the test's own, and an event loop that runs until something is so.
class BusLoopTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!bus.runs()) {
      GTEST_SKIP() << "dbus-daemon is not installed";
    }
  }

  /// Whether it came to be so within a bound that only a fault reaches.
  bool runUntil(const std::function<bool()>& isSo) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    while (!isSo()) {
      loop.restart();
      loop.run_one_for(std::chrono::milliseconds{20});
      if (std::chrono::steady_clock::now() > end) {
        return false;
      }
    }
    return true;
  }

  ScratchFolder folder;
  PrivateBus bus{folder.path() / "bus"};
  boost::asio::io_context loop{1};
};

} // namespace orvan
