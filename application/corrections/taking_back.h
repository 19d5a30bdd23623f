#pragma once

#include <cstdint>
#include <optional>

#include "OrvanPlatform/instant.h"
#include "application/corrections/action_journal.h"

namespace orvan {

/// Takes back an action as takeBackAction() does, and has the store draw the consequences: which conversations wait,
/// which questions were answered meanwhile, to whom that belongs which an import found out in between, and how
/// follow-ups surface. Within the caller's transaction; throws what takeBackAction() throws. Reminders are the caller's
/// to set right.
JournalEntry undoAction(std::optional<std::int64_t> number, Instant now, Connection& connection);

} // namespace orvan
