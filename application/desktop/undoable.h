#pragma once

#include <QString>
#include <cstdint>
#include <variant>

#include "application/desktop/decision_to_save.h"

namespace orvan {

/// What the user put right in the window. Unlike a decision it is in the store at once, with an entry in the journal by
/// which it is taken back.
struct SavedCorrection {
  /// The number of that entry.
  std::int64_t action;
  /// Who is shown when it is taken back.
  QString personKey;
  /// What was done: "Hidden: Ada Marsh".
  QString words;
};

/// The last thing that the user did, which the window offers to undo.
using Undoable = std::variant<DecisionToSave, SavedCorrection>;

/// What it was.
QString inWords(const Undoable& undoable);

} // namespace orvan
