#pragma once

#include <QString>

namespace orvan {

/// Why the window can show nothing, and what the user can do next. Holds nothing of the user's data.
struct FailureInWords {
  QString title;
  QString text;
  /// What to run in a terminal, line by line; may be empty.
  QString commands;
};

/// What the exception that is being handled means to somebody who looks at the window. To be called within a handler.
FailureInWords currentFailureInWords();

/// Whether the exception that is being handled says that there is no store yet.
bool tellsOfNoStore();

} // namespace orvan
