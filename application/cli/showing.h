#pragma once

#include <span>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "application/cli/commands.h"

namespace orvan {

/// Opens the session for a command that shows reasons: on a terminal so that it can be remembered which.
void openToShow(const CommandContext& context);

/// On a terminal, remembers that these were shown; never fails.
void noteShown(const CommandContext& context, std::span<const AttentionCatchUpItem> items);

} // namespace orvan
