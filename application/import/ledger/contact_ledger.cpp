#include "application/import/ledger/contact_ledger.h"

#include <algorithm>
#include <optional>

#include "OrvanObservatory/contact_week.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

/// A mail to more people than this is an announcement, and says little of what the user has to do with each of them.
constexpr std::size_t mostReadersOfALetter = 10;

constexpr const char* upsertWeek = R"sql(
INSERT INTO contact_week (week, source_identity_id, sent, received, in_company, sent_in_company, met)
VALUES (?, ?, ?, ?, ?, ?, ?)
ON CONFLICT DO UPDATE SET
  sent = max(sent + excluded.sent, 0), received = max(received + excluded.received, 0),
  in_company = max(in_company + excluded.in_company, 0),
  sent_in_company = max(sent_in_company + excluded.sent_in_company, 0), met = max(met + excluded.met, 0)
)sql";

/// Most mails lie within a span that is known; its row is then only read.
constexpr const char* widenSpan = R"sql(
INSERT INTO contact_span (source_identity_id, first_contact_at, first_reached_at)
VALUES (?, ?, ?)
ON CONFLICT DO UPDATE SET
  first_contact_at = min(first_contact_at, excluded.first_contact_at),
  first_reached_at = min(COALESCE(first_reached_at, excluded.first_reached_at),
                         COALESCE(excluded.first_reached_at, first_reached_at))
WHERE excluded.first_contact_at < first_contact_at
   OR excluded.first_reached_at < COALESCE(first_reached_at, '~')
)sql";

/// The row is there: whoever has a mail has a span.
constexpr const char* addMails = R"sql(
UPDATE contact_span SET
  mails_to = max(mails_to + ?2, 0), mails_from = max(mails_from + ?3, 0),
  last_mail_at = max(COALESCE(last_mail_at, ?4, ?5), COALESCE(?4, ?5, last_mail_at), COALESCE(?5, ?4, last_mail_at)),
  last_mail_to_at = max(COALESCE(last_mail_to_at, ?4), COALESCE(?4, last_mail_to_at)),
  last_mail_from_at = max(COALESCE(last_mail_from_at, ?5), COALESCE(?5, last_mail_from_at))
WHERE source_identity_id = ?1
)sql";

/// The latest mail of its direction may be the one that was removed. Only then are the others looked at.
constexpr const char* findLastMailAgain = R"sql(
UPDATE contact_span SET (last_mail_at, last_mail_to_at, last_mail_from_at) = (
  SELECT max(i.occurred_at), max(CASE i.direction WHEN 'outbound' THEN i.occurred_at END),
         max(CASE i.direction WHEN 'inbound' THEN i.occurred_at END)
  FROM interaction_participant present
  JOIN interaction i ON i.id = present.interaction_id AND i.kind = 'message'
  WHERE present.source_identity_id = ?1)
WHERE source_identity_id = ?1 AND (last_mail_to_at <= ?2 OR last_mail_from_at <= ?3)
)sql";

std::optional<std::string_view> textOrNothing(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional<std::string_view>{text};
}

bool isReached(const InteractionRow& row) {
  return row.direction != "inbound";
}

} // namespace

void ContactLedger::count(const InteractionRow& row, std::int64_t step, std::optional<std::string_view> only) {
  const auto at = parseInternetDateTime(row.occurredAt);
  if (!at) {
    return;
  }
  const auto week = contactWeekOf(*at);
  for (const auto& identityID : row.participantIdentityIDs) {
    if (only && identityID != *only) {
      continue;
    }
    auto& counts = weeks_[{week, identityID}];
    if (row.kind == "meeting") {
      counts.met += step;
    } else if (row.direction == "outbound" && row.participantIdentityIDs.size() <= mostReadersOfALetter) {
      counts.sent += step;
    } else if (row.direction == "inbound" && row.conversationKind == "direct") {
      counts.received += step;
    } else {
      counts.inCompany += step;
      counts.sentInCompany += row.direction == "outbound" ? step : 0;
    }
    if (step > 0) {
      widen(identityID, row);
    }
    if (row.kind == "message") {
      countMail(identityID, row, step);
    }
  }
}

void ContactLedger::widen(const std::string& identityID, const InteractionRow& row) {
  auto& span = spans_[identityID];
  if (span.firstContactAt.empty() || row.occurredAt < span.firstContactAt) {
    span.firstContactAt = row.occurredAt;
  }
  if (isReached(row) && (span.firstReachedAt.empty() || row.occurredAt < span.firstReachedAt)) {
    span.firstReachedAt = row.occurredAt;
  }
}

void ContactLedger::countMail(const std::string& identityID, const InteractionRow& row, std::int64_t step) {
  auto& mails = row.direction == "outbound" ? mails_[identityID].to : mails_[identityID].from;
  mails.count += step;
  auto& last = step > 0 ? mails.lastAddedAt : mails.lastRemovedAt;
  last = std::max(last, row.occurredAt);
}

std::vector<std::string> ContactLedger::write(Connection& connection) {
  writeWeeks(connection);
  auto reached = writeSpans(connection);
  writeMails(connection);
  weeks_.clear();
  spans_.clear();
  mails_.clear();
  return reached;
}

void ContactLedger::writeWeeks(Connection& connection) const {
  RepeatedStatement week(connection, upsertWeek);
  for (const auto& [key, counts] : weeks_) {
    if (counts == Counts{}) { // Taken out and put back as it was.
      continue;
    }
    week.execute(key.first, key.second, counts.sent, counts.received, counts.inCompany, counts.sentInCompany,
                 counts.met);
  }
}

std::vector<std::string> ContactLedger::writeSpans(Connection& connection) const {
  RepeatedStatement widening(connection, widenSpan);
  std::vector<std::string> reached;
  for (const auto& [identityID, span] : spans_) {
    widening.execute(identityID, span.firstContactAt, textOrNothing(span.firstReachedAt));
    if (connection.changes() > 0 && !span.firstReachedAt.empty()) {
      reached.push_back(identityID);
    }
  }
  return reached;
}

void ContactLedger::writeMails(Connection& connection) const {
  RepeatedStatement add(connection, addMails);
  for (const auto& [identityID, mails] : mails_) {
    add.execute(identityID, mails.to.count, mails.from.count, textOrNothing(mails.to.lastAddedAt),
                textOrNothing(mails.from.lastAddedAt));
  }
  RepeatedStatement findAgain(connection, findLastMailAgain);
  for (const auto& [identityID, mails] : mails_) {
    if (!mails.to.lastRemovedAt.empty() || !mails.from.lastRemovedAt.empty()) {
      findAgain.execute(identityID, textOrNothing(mails.to.lastRemovedAt), textOrNothing(mails.from.lastRemovedAt));
    }
  }
}

} // namespace orvan
