#include "application/session/item_details.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/source_eligibility.h"
#include "application/session/item_lookup.h"
#include "application/session/shared_names.h"

namespace orvan {
namespace {

constexpr std::int64_t mostExchanges = 20;

Exchange::Kind kindOf(std::string_view kind, std::string_view direction) {
  if (kind == "meeting") {
    return Exchange::Kind::meeting;
  }
  return direction == "outbound" ? Exchange::Kind::sent : Exchange::Kind::received;
}

Exchange exchangeIn(const Query& row) {
  const auto kind = kindOf(row.text(row.column("kind")), row.text(row.column("direction")));
  const auto writer = row.optionalText(row.column("writer"));
  return {std::string{row.text(row.column("id"))}, kind, std::string{row.text(row.column("occurred_at"))},
          writer && kind == Exchange::Kind::received ? std::optional<std::string>{*writer} : std::nullopt};
}

Conversation conversationIn(const std::string& threadID, Instant asOf, Connection& connection) {
  static const std::string untilEligibility = R"sql(
SELECT i.id, i.kind, i.direction, i.occurred_at, count(*) OVER () AS total,
       coalesce(nullif(writer.display_name, ''), nullif(mailbox.display_name, ''), mailbox.address) AS writer
FROM interaction i
LEFT JOIN source_identity mailbox ON mailbox.id = i.source_identity_id
LEFT JOIN person writer ON writer.id = (
  SELECT im.canonical_person_id FROM identity_membership im
  WHERE im.source_identity_id = i.source_identity_id AND im.ended_at IS NULL
    AND im.state IN ('high_conf', 'confirmed')
  LIMIT 1)
WHERE i.thread_id = ? AND i.occurred_at <= ? AND )sql";
  static const std::string untilEnd = "\nORDER BY i.occurred_at DESC, i.id DESC\nLIMIT ?";
  const auto eligible = SourceEligibility::interactionPredicateSQL(
      SourceEligibility::Policy::showable, "i.id", "i.thread_id", "i.source_event_id", "writer.id", connection);
  Conversation conversation;
  auto rows =
      connection.query(untilEligibility + eligible + untilEnd, threadID, formatInternetDateTime(asOf), mostExchanges);
  while (rows.next()) {
    conversation.exchanges.push_back(exchangeIn(rows));
    conversation.earlier = std::max<std::int64_t>(rows.integer(rows.column("total")) - mostExchanges, 0);
  }
  std::ranges::reverse(conversation.exchanges);
  return conversation;
}

void addQuestions(const std::string& personKey, const std::string& threadID, Conversation& conversation,
                  Connection& connection) {
  auto rows = connection.query(R"sql(
SELECT i.id, said.statement
FROM claim c
JOIN claim_text said ON said.claim_id = c.id
JOIN claim_evidence proof ON proof.claim_id = c.id
JOIN interaction i ON i.source_event_id = proof.source_event_id AND i.thread_id = ?2
WHERE c.person_id = ?1 AND c.kind = 'asked_question' AND said.statement <> ''
)sql",
                               personKey, threadID);
  while (rows.next()) {
    const auto asked = std::ranges::find(conversation.exchanges, rows.text(Column{0}), &Exchange::interactionID);
    if (asked != conversation.exchanges.end()) {
      asked->question = std::string{rows.text(Column{1})};
    }
  }
}

Conversation conversationAbout(const About& about, const std::string& personKey, Instant asOf, Connection& connection) {
  if (!about.threadID) {
    return {};
  }
  auto conversation = conversationIn(*about.threadID, asOf, connection);
  addQuestions(personKey, *about.threadID, conversation, connection);
  return conversation;
}

/// The item rests on the first of its kind. That its own conversation waits for a reply is told by the conversation. A
/// follow-up rests on none of them.
std::vector<Matter> mattersBeside(const FoundItem& found, const About& about, Connection& connection) {
  auto matters = mattersOf(found.bundle, connection);
  if (found.followUp) {
    return matters;
  }
  const auto kind = found.item.whyNow().kind();
  const auto own = std::ranges::find_if(matters, [&](const Matter& matter) { return orvan::kindOf(matter) == kind; });
  if (own != matters.end()) {
    matters.erase(own);
  }
  std::erase_if(matters, [&](const Matter& matter) {
    const auto* thread = std::get_if<OpenThreadEvidence>(&matter.evidence);
    return thread != nullptr && thread->threadID() == about.threadID;
  });
  return matters;
}

/// The person's scheduled follow-ups without the one that the item is of.
std::vector<ListedFollowUp> furtherFollowUps(const FoundItem& found, Connection& connection) {
  auto followUps = followUpsOf(found.item.personKey(), FollowUpChoice::scheduled, connection);
  std::erase_if(followUps, [&](const ListedFollowUp& each) { return found.followUp && each.id == found.followUp->id; });
  return followUps;
}

/// The next follow-up of the person whom the user names; nothing when there is none to show.
std::optional<std::string> keyOfNextFollowUp(const std::string& text, Session& session) {
  const auto personKey = session.personKeyOf(text);
  const auto followUps = session.readableStore().read(
      [&](Connection& connection) { return followUpsOf(personKey, FollowUpChoice::scheduled, connection); });
  return followUps.empty() || !followUps.front().item ? std::nullopt : std::optional{followUps.front().item->itemKey()};
}

FoundItem itemToShow(const std::string& text, Session& session, Instant asOf) {
  try {
    return itemCalled(text, session, asOf);
  } catch (const Error& error) {
    const auto next =
        error.code() == SessionError::noReasonNow && !isItemKey(text) ? keyOfNextFollowUp(text, session) : std::nullopt;
    if (!next) {
      throw;
    }
    return itemCalled(*next, session, asOf);
  }
}

} // namespace

std::string_view caseName(Exchange::Kind kind) noexcept {
  switch (kind) {
    case Exchange::Kind::received:
      return "received";
    case Exchange::Kind::sent:
      return "sent";
    case Exchange::Kind::meeting:
      return "meeting";
  }
  return "unknown";
}

ItemDetails itemDetails(const std::string& text, Session& session, Instant asOf) {
  session.openForReading();
  auto found = itemToShow(text, session, asOf);
  const auto& personKey = found.item.personKey();
  auto records = session.records(personKey);
  const SharedNames shared(session.outlooks(asOf));
  return session.readableStore().read([&](Connection& connection) {
    auto about = aboutOf(found, connection);
    auto conversation = conversationAbout(about, personKey, asOf, connection);
    auto address = shared.addressToTell(found.item.displayName(), personKey, connection);
    auto others = mattersBeside(found, about, connection);
    auto further = furtherFollowUps(found, connection);
    return ItemDetails{found.item,          std::move(address), std::move(about), std::move(conversation),
                       std::move(others),   std::move(records), found.followUp,   std::move(further),
                       wrongReasonIn(found)};
  });
}

} // namespace orvan
