#pragma once

namespace orvan {

/// Ends the program, in every build, when a caller broke a documented condition: `holds` is that condition, and
/// `sentence` says what the caller must do. The sentence goes to standard error, so it holds nothing from the user's
/// data. For programmer mistakes only; a damaged row or a busy file is not one.
void precondition(bool holds, const char* sentence) noexcept;

} // namespace orvan
