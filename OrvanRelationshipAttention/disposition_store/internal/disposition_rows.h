#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "OrvanStore/connection.h"

/// The rows behind dispositions and their candidates. Everything here runs in the caller's transaction and throws
/// StoreError.
namespace orvan::internal {

/// The record kept under `itemKey`; nothing when there is none or it cannot be read.
std::optional<AttentionItemDispositionRecord> loadRecord(std::string_view itemKey, Connection& connection);

/// A person's records in row order, without those that cannot be read.
std::vector<AttentionItemDispositionRecord> loadRecords(std::string_view personID, Connection& connection);

/// Makes the rows of `item` say what `record` says: candidate, evidence and disposition, or none when it is active.
void write(const AttentionItemDispositionRecord& record, const AttentionCatchUpItem& item, Connection& connection,
           Instant now);

} // namespace orvan::internal
