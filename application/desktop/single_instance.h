#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "OrvanPlatform/bus/bus_connection.h"

namespace orvan {

/// Sees to it that one window shows a store: whoever starts a second one gets the first before their eyes. Belongs to
/// the bus connection's thread, and must not outlive that.
class SingleInstance {
 public:
  enum class Claim {
    /// No other window has the store; this one is known for it from now on.
    first,
    /// Another window has it, and shows itself now.
    handedOver,
    /// Another window has it and does not answer.
    notAnswered,
  };

  SingleInstance(BusConnection& bus, const std::filesystem::path& store);

  /// Calls `answer` once. `person` is whom a window that is there already is to show; it may be empty.
  void claim(const std::string& person, std::function<void(Claim)> answer);

  /// What to do when somebody starts another window, with the person whom that was to show or "".
  void onShow(std::function<void(const std::string& person)> handler) { onShow_ = std::move(handler); }

 private:
  void handOver(const std::string& person, const std::function<void(Claim)>& answer);

  BusConnection& bus_;
  std::string name_;
  std::function<void(const std::string&)> onShow_;
  BusSubscription exported_;
};

} // namespace orvan
