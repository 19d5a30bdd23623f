#include "application/session/session_error.h"

#include <string>

namespace orvan {
namespace {

class Category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.session"; }

  std::string message(int value) const override {
    switch (static_cast<SessionError>(value)) {
      case SessionError::personUnknown:
        return "personUnknown";
      case SessionError::personAmbiguous:
        return "personAmbiguous";
      case SessionError::noReasonNow:
        return "noReasonNow";
      case SessionError::reasonChanged:
        return "reasonChanged";
      case SessionError::snoozeEndPast:
        return "snoozeEndPast";
      case SessionError::personHidden:
        return "personHidden";
      case SessionError::conversationUnknown:
        return "conversationUnknown";
      case SessionError::nothingHidden:
        return "nothingHidden";
      case SessionError::severalMeant:
        return "severalMeant";
      case SessionError::reasonStands:
        return "reasonStands";
      case SessionError::followUpUnknown:
        return "followUpUnknown";
      case SessionError::followUpAmbiguous:
        return "followUpAmbiguous";
      case SessionError::followUpElsewhere:
        return "followUpElsewhere";
      case SessionError::cannotMakeFolder:
        return "cannotMakeFolder";
    }
    return "unknown";
  }
};

} // namespace

std::error_code make_error_code(SessionError error) noexcept {
  static const Category category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
