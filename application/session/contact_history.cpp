#include "application/session/contact_history.h"

#include <algorithm>
#include <chrono>
#include <string_view>

#include "OrvanObservatory/contact_week.h"
#include "OrvanPlatform/internet_date_time.h"
#include "application/session/instant_column.h"

namespace orvan {
namespace {

std::vector<std::string> identitiesThatCount(const std::string& personKey, Connection& connection) {
  std::vector<std::string> identityIDs;
  auto rows = connection.query(R"sql(
SELECT source_identity_id
FROM identity_membership
WHERE canonical_person_id = ? AND ended_at IS NULL AND state IN ('high_conf', 'confirmed')
  AND source_identity_id NOT IN (SELECT source_identity_id FROM mailbox_kind)
)sql",
                               personKey);
  while (rows.next()) {
    identityIDs.emplace_back(rows.text(Column{0}));
  }
  return identityIDs;
}

void keepLatest(std::optional<Instant>& latest, std::optional<Instant> at) {
  latest = std::max(latest, at);
}

class HistoryReader {
 public:
  HistoryReader(Instant asOf, Connection& connection)
      : asOf_(asOf), asOfText_(formatInternetDateTime(asOf)), week_(contactWeekOf(asOf)), connection_(connection) {
    history_.firstWeek = week_ - static_cast<std::int64_t>(weeksOfHistory) + 1;
    for (auto* counts : {&history_.mailsTo, &history_.mailsFrom, &history_.meetings}) {
      counts->assign(weeksOfHistory, 0);
    }
  }

  ContactHistory read(const std::string& personKey) {
    for (const auto& identityID : identitiesThatCount(personKey, connection_)) {
      readWeeks(identityID);
      readSpan(identityID);
    }
    tellQuiet();
    return std::move(history_);
  }

 private:
  void readWeeks(const std::string& identityID) {
    auto rows = connection_.query(R"sql(
SELECT week, sent + sent_in_company, received + in_company - sent_in_company, met
FROM contact_week
WHERE source_identity_id = ? AND week BETWEEN ? AND ?
)sql",
                                  identityID, history_.firstWeek, week_);
    while (rows.next()) {
      const auto place = static_cast<std::size_t>(rows.integer(Column{0}) - history_.firstWeek);
      history_.mailsTo[place] += rows.integer(Column{1});
      history_.mailsFrom[place] += std::max<std::int64_t>(rows.integer(Column{2}), 0);
      history_.meetings[place] += rows.integer(Column{3});
    }
  }

  void readSpan(const std::string& identityID) {
    auto rows = connection_.query(
        "SELECT first_contact_at, last_mail_to_at, last_mail_from_at FROM contact_span WHERE source_identity_id = ?",
        identityID);
    if (!rows.next()) {
      return;
    }
    const auto first = instantIn(rows, Column{0});
    const auto lastTo = instantIn(rows, Column{1});
    const auto lastFrom = instantIn(rows, Column{2});
    firstContactAt_ = firstContactAt_ && (!first || *firstContactAt_ < *first) ? firstContactAt_ : first;
    const bool liesAhead = lastTo > asOf_ || lastFrom > asOf_ || meetsThisWeekOrLater(identityID);
    if (liesAhead) {
      leaveOutWhatLiesAhead(identityID);
    }
    if (liesAhead || hasMet(identityID)) {
      readLastInteractions(identityID);
    } else {
      keepLatest(history_.lastMailToAt, lastTo);
      keepLatest(history_.lastMailFromAt, lastFrom);
    }
  }

  bool meetsThisWeekOrLater(const std::string& identityID) {
    return connection_
        .fetchOptionalInteger("SELECT 1 FROM contact_week WHERE source_identity_id = ? AND met > 0 AND week >= ?",
                              identityID, week_)
        .has_value();
  }

  bool hasMet(const std::string& identityID) {
    return connection_
        .fetchOptionalInteger("SELECT 1 FROM contact_week WHERE source_identity_id = ? AND met > 0", identityID)
        .has_value();
  }

  /// The counts are of whole weeks, and this one has not ended.
  void leaveOutWhatLiesAhead(const std::string& identityID) {
    auto rows =
        connection_.query(R"sql(
SELECT i.direction, count(*)
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id
WHERE present.source_identity_id = ? AND i.occurred_at > ? AND i.occurred_at < ?
GROUP BY i.direction
)sql",
                          identityID, asOfText_, formatInternetDateTime(Instant{std::chrono::weeks{week_ + 1}}));
    while (rows.next()) {
      const auto direction = rows.text(Column{0});
      auto& counts = direction == "outbound"  ? history_.mailsTo
                     : direction == "inbound" ? history_.mailsFrom
                                              : history_.meetings;
      counts.back() = std::max<std::int64_t>(counts.back() - rows.integer(Column{1}), 0);
    }
  }

  void readLastInteractions(const std::string& identityID) {
    auto rows = connection_.query(R"sql(
SELECT i.direction, max(i.occurred_at)
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id
WHERE present.source_identity_id = ? AND i.occurred_at <= ?
GROUP BY i.direction
)sql",
                                  identityID, asOfText_);
    while (rows.next()) {
      const auto direction = rows.text(Column{0});
      keepLatest(direction == "outbound"  ? history_.lastMailToAt
                 : direction == "inbound" ? history_.lastMailFromAt
                                          : history_.lastMetAt,
                 instantIn(rows, Column{1}));
    }
  }

  bool isQuiet(std::size_t place) const {
    return history_.mailsTo[place] + history_.mailsFrom[place] + history_.meetings[place] == 0;
  }

  void tellQuiet() {
    if (const auto last = std::max({history_.lastMailToAt, history_.lastMailFromAt, history_.lastMetAt})) {
      const auto weeks = week_ - contactWeekOf(*last) - 1;
      history_.currentQuiet = weeks > 0 ? std::optional{QuietStretch{contactWeekOf(*last) + 1, weeks}} : std::nullopt;
    }
    if (firstContactAt_) {
      const auto first = std::max(contactWeekOf(*firstContactAt_), history_.firstWeek);
      history_.longestQuiet = longestQuietSince(first);
    }
  }

  /// This week may still bring something.
  std::optional<QuietStretch> longestQuietSince(std::int64_t firstWeek) const {
    std::optional<QuietStretch> longest;
    QuietStretch current{firstWeek, 0};
    for (auto week = firstWeek; week < week_; ++week) {
      if (!isQuiet(static_cast<std::size_t>(week - history_.firstWeek))) {
        current = {week + 1, 0};
      } else if (++current.weeks; !longest || current.weeks >= longest->weeks) {
        longest = current;
      }
    }
    return longest;
  }

  Instant asOf_;
  std::string asOfText_;
  std::int64_t week_;
  Connection& connection_;
  ContactHistory history_;
  std::optional<Instant> firstContactAt_;
};

} // namespace

ContactHistory contactHistory(Session& session, const std::string& personKey, Instant asOf) {
  return session.readableStore().read(
      [&](Connection& connection) { return contactHistory(personKey, asOf, connection); });
}

ContactHistory contactHistory(const std::string& personKey, Instant asOf, Connection& connection) {
  return HistoryReader(asOf, connection).read(personKey);
}

} // namespace orvan
