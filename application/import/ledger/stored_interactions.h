#pragma once

#include <optional>
#include <string_view>

#include "OrvanStore/connection.h"
#include "application/import/ledger/history_rows.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {

// What was imported before and has to give way. Each runs within the caller's transaction.

/// The interaction as it is stored; nothing when there is none.
std::optional<InteractionRow> storedInteraction(std::string_view interactionID, Connection& connection);

/// The mail with that key in that thread, as it is stored; nothing when there is none.
std::optional<InteractionRow> storedMail(MailKey mail, std::string_view threadID, Connection& connection);

/// Takes the participants of `row` away from the interaction.
void deleteParticipants(const InteractionRow& row, Connection& connection);

/// Takes the interaction and all that is told of it alone out of the store.
void deleteInteraction(const InteractionRow& row, Connection& connection);

} // namespace orvan
