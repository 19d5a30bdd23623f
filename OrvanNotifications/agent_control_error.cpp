#include "OrvanNotifications/agent_control_error.h"

#include <string>

namespace orvan {
namespace {

class AgentControlCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.agent-control"; }

  std::string message(int value) const override {
    switch (static_cast<AgentControlError>(value)) {
      case AgentControlError::noBus:
        return "there is no bus of the user's session";
      case AgentControlError::noAgent:
        return "the reminder service does not run and cannot be started";
      case AgentControlError::tooSlow:
        return "the reminder service did not answer in time";
      case AgentControlError::left:
        return "the reminder service ended before it answered";
      case AgentControlError::refused:
        return "the reminder service does not take this";
      case AgentControlError::locked:
        return "the key of the reminder service's file cannot be read now";
      case AgentControlError::unusable:
        return "the reminder service's file cannot be used";
      case AgentControlError::noNotificationService:
        return "no service of the desktop shows notifications";
      case AgentControlError::notYours:
        return "the reminder service belongs to another user";
      case AgentControlError::failed:
        return "the reminder service failed";
    }
    return "unknown";
  }
};

} // namespace

const std::error_category& agentControlErrorCategory() noexcept {
  static const AgentControlCategory category;
  return category;
}

std::error_code make_error_code(AgentControlError error) noexcept {
  return {static_cast<int>(error), agentControlErrorCategory()};
}

} // namespace orvan
