#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace orvan::internal {

struct UnrefMessage {
  void operator()(sd_bus_message* message) const noexcept { sd_bus_message_unref(message); }
};
/// A message that is being made.
using OwnMessage = std::unique_ptr<sd_bus_message, UnrefMessage>;

} // namespace orvan::internal
