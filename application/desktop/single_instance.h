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

  /// What a window is to show when somebody starts another.
  struct Wish {
    /// Whom, as on the command line; may be empty.
    std::string person;
    /// The desktop's leave to come to the front; may be empty.
    std::string activationToken;
  };

  /// Calls `answer` once. `wish` is for a window that is there already.
  void claim(const Wish& wish, std::function<void(Claim)> answer);

  /// What to do when somebody starts another window.
  void onShow(std::function<void(const Wish& wish)> handler) { onShow_ = std::move(handler); }

 private:
  void handOver(const Wish& wish, const std::function<void(Claim)>& answer);

  BusConnection& bus_;
  std::string name_;
  std::function<void(const Wish&)> onShow_;
  BusSubscription exported_;
};

} // namespace orvan
