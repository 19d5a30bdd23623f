#include "application/desktop/undoable.h"

#include "application/desktop/wording.h"

namespace orvan {

QString inWords(const Undoable& undoable) {
  if (const auto* correction = std::get_if<SavedCorrection>(&undoable)) {
    return correction->words;
  }
  const auto& decision = std::get<DecisionToSave>(undoable);
  return std::visit([&decision](const auto& action) { return inWords(action, decision.displayName); }, decision.action);
}

} // namespace orvan
