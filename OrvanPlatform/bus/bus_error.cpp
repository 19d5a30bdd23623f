#include "OrvanPlatform/bus/bus_error.h"

#include <string>

namespace orvan {
namespace {

class BusErrorCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.bus"; }

  std::string message(int value) const override {
    switch (static_cast<BusError>(value)) {
      case BusError::noBus:
        return "there is no bus to connect to";
      case BusError::disconnected:
        return "the connection to the bus has been lost";
      case BusError::timedOut:
        return "no answer came in time";
      case BusError::noService:
        return "the service is not there and could not be started";
      case BusError::serviceLeft:
        return "the service left without an answer";
      case BusError::answeredWithError:
        return "the service answered with an error";
      case BusError::malformed:
        return "a message is not of the form agreed on";
    }
    return "unknown";
  }
};

} // namespace

const std::error_category& busErrorCategory() noexcept {
  static const BusErrorCategory category;
  return category;
}

std::error_code make_error_code(BusError error) noexcept {
  return {static_cast<int>(error), busErrorCategory()};
}

} // namespace orvan
