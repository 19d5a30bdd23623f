#include "application/corrections/action_journal_error.h"

#include <string>

namespace orvan {
namespace {

class JournalCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.action-journal"; }

  std::string message(int value) const override {
    switch (static_cast<ActionJournalError>(value)) {
      case ActionJournalError::actionUnknown:
        return "actionUnknown";
      case ActionJournalError::nothingToTakeBack:
        return "nothingToTakeBack";
      case ActionJournalError::takenBackAlready:
        return "takenBackAlready";
      case ActionJournalError::actionFinal:
        return "actionFinal";
      case ActionJournalError::actionTooOld:
        return "actionTooOld";
      case ActionJournalError::changedSince:
        return "changedSince";
      case ActionJournalError::actionUnreadable:
        return "actionUnreadable";
    }
    return "unknown";
  }
};

} // namespace

std::error_code make_error_code(ActionJournalError error) noexcept {
  static const JournalCategory category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
