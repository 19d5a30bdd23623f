#pragma once

#include <optional>
#include <span>
#include <string>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanStore/connection.h"
#include "application/session/session.h"

namespace orvan {

/// Remembers under which key each person's reason was shown to the user last, so that what they decide about a person
/// by name is about what they saw. Only in a session that is open for writing, and only if nobody else is writing at
/// the moment: showing waits for nothing and does not fail for this. Costs no writing for what was shown before.
void rememberShown(std::span<const AttentionCatchUpItem> items, Instant asOf, Session& session) noexcept;

/// The key of the person's item that was shown last. Runs within the caller's read; throws StoreError.
std::optional<std::string> keyShownOf(const std::string& personKey, Connection& connection);

} // namespace orvan
