#pragma once

#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "application/import/ledger/card_importer.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/ledger/meeting_importer.h"
#include "application/session/catch_up_list.h"
#include "application/session/item_details.h"
#include "application/session/listed_follow_up.h"
#include "application/session/people_list.h"

namespace orvan {

/// JSON with its names in the order they are written. Names are the fields' names, absent values are null, enumerations
/// are their case names, instants are RFC 3339 text in UTC.
using Json = nlohmann::ordered_json;

Json toJson(const AttentionEvidenceBundle& bundle);
Json toJson(const std::vector<AttentionEvidenceBundle>& bundles);
Json toJson(const AttentionWhyNowItem& item);
Json toJson(const AttentionCatchUpItem& item);
Json toJson(const AttentionItemDispositionRecord& record);
Json toJson(const std::vector<AttentionItemDispositionRecord>& records);
Json toJson(const ListedPerson& person);
Json toJson(const std::vector<ListedPerson>& people);
/// All rows, or the first `limit`.
Json toJson(const CatchUpList& list, std::optional<std::size_t> limit, Explanation explanation);
Json toJson(const ItemDetails& details);
Json toJson(const ListedFollowUp& followUp);
Json toJson(const MailReport& report);
Json toJson(const MeetingReport& report);
Json toJson(const CardReport& report);

std::string_view caseName(NotShownReason reason) noexcept;
std::string_view caseName(MailSkipReason reason) noexcept;
std::string_view caseName(CalendarSkip reason) noexcept;
std::string_view caseName(CalendarNotice notice) noexcept;
std::string_view caseName(CardSkip reason) noexcept;

/// Writes the document and a line break to standard output. Bytes that are not UTF-8 are replaced.
void printJson(const Json& document);

} // namespace orvan
