#include "application/session/contact_overview.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <iterator>
#include <limits>
#include <unordered_map>
#include <utility>

#include "OrvanObservatory/contact_outlook.h"
#include "OrvanObservatory/contact_week.h"
#include "OrvanPlatform/internet_date_time.h"
#include "application/session/contact_history.h"
#include "application/session/instant_column.h"

namespace orvan {
namespace {

constexpr std::int64_t weeksOfAYear = 52;
/// Contact in fewer weeks, or within a shorter time, was a matter and no tie that could drift.
constexpr std::int64_t fewestWeeksOfATie = 6;
constexpr std::int64_t shortestTie = 26;
/// A quiet stretch of up to so many weeks tells nothing: people travel.
constexpr std::int64_t weeksOfAnyPause = 8;
/// Were contact to come at random, one pause of twenty would be longer than so many usual ones.
constexpr std::int64_t pausesBeforeItIsQuiet = 3;
constexpr std::int64_t fewestWeeksInTouch = 3;
/// Nobody owes an answer to what was sent a moment ago.
constexpr std::int64_t daysToAnswer = 7;

/// What the weeks tell of a person on the way.
struct Tally {
  std::int64_t activeWeeks = 0;
  std::int64_t activeWeeksOfTheYear = 0;
  std::int64_t firstActiveWeek = 0;
  std::int64_t lastActiveWeek = 0;
  std::int64_t longestPause = 0;
  std::int64_t lastWeekSent = 0;
  /// Mails between the two and meetings; what went to many tells nothing of either.
  bool hasReached = false;
  bool hasHeard = false;
  bool hasReceived = false;

  void addActiveWeek(std::int64_t week, std::int64_t now) {
    if (activeWeeks > 0 && week == lastActiveWeek) { // Of another address.
      return;
    }
    if (activeWeeks == 0) {
      firstActiveWeek = week;
    } else {
      longestPause = std::max(longestPause, week - lastActiveWeek - 1);
    }
    ++activeWeeks;
    activeWeeksOfTheYear += week > now - weeksOfAYear ? 1 : 0;
    lastActiveWeek = week;
  }

  bool isMutual() const noexcept { return hasReached && hasHeard; }
  std::int64_t weeksSpanned() const noexcept { return lastActiveWeek - firstActiveWeek; }
  /// How many weeks may pass without contact before it is quieter than usual.
  std::int64_t weeksAllowed() const noexcept {
    const auto pauses = std::max<std::int64_t>(activeWeeks - 1, 1);
    return std::max(weeksOfAnyPause, pausesBeforeItIsQuiet * weeksSpanned() / pauses);
  }

  ContactStanding standingAt(std::int64_t now) const noexcept {
    if (activeWeeks == 0 || !isMutual()) {
      return ContactStanding::acquainted;
    }
    const auto quiet = now - lastActiveWeek - 1;
    if (quiet <= weeksAllowed()) {
      return activeWeeksOfTheYear >= fewestWeeksInTouch ? ContactStanding::inTouch : ContactStanding::acquainted;
    }
    const bool wasTie = activeWeeks >= fewestWeeksOfATie && weeksSpanned() >= shortestTie;
    return wasTie && quiet > longestPause ? ContactStanding::driftedAway : ContactStanding::acquainted;
  }
};

/// A person on the way into the overview.
struct Gathered {
  ContactSummary summary;
  Tally tally;
  bool isAcquainted = false;
  std::optional<Instant> lastMailToAt;
  std::optional<Instant> lastMailFromAt;
  std::optional<Instant> lastMetAt;
};

class OverviewReader {
 public:
  OverviewReader(Instant asOf, Connection& connection)
      : asOf_(asOf), asOfText_(formatInternetDateTime(asOf)), week_(contactWeekOf(asOf)), connection_(connection) {}

  std::vector<ContactSummary> read() {
    readPeople();
    readWeeks();
    readMeetings();
    readWaiting();
    std::vector<ContactSummary> summaries;
    summaries.reserve(people_.size());
    for (auto& person : people_) {
      finish(person);
      if (person.summary.lastContactAt) {
        summaries.push_back(std::move(person.summary));
      }
    }
    return summaries;
  }

 private:
  /// In the order of the index on memberships, so that a person's addresses come one after the other.
  void readPeople() {
    auto rows = connection_.query(R"sql(
SELECT im.canonical_person_id, p.display_name, span.source_identity_id, span.last_mail_to_at, span.last_mail_from_at,
       span.first_reached_at
FROM identity_membership im
JOIN person p ON p.id = im.canonical_person_id
JOIN contact_span span ON span.source_identity_id = im.source_identity_id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  AND im.source_identity_id NOT IN (SELECT source_identity_id FROM mailbox_kind)
  AND p.id NOT IN (SELECT target_id FROM exclusion_rule WHERE scope = 'person' AND ended_at IS NULL)
ORDER BY im.canonical_person_id
)sql");
    while (rows.next()) {
      const auto key = rows.text(Column{0});
      if (people_.empty() || people_.back().summary.personKey != key) {
        auto& summary = people_.emplace_back().summary;
        summary.personKey = key;
        summary.displayName = rows.optionalText(Column{1}).value_or("");
      }
      addSpan(people_.back(), rows);
      positions_.emplace(rows.text(Column{2}), people_.size() - 1);
    }
  }

  void addSpan(Gathered& person, const Query& row) const {
    person.lastMailToAt = std::max(person.lastMailToAt, instantIn(row, Column{3}));
    person.lastMailFromAt = std::max(person.lastMailFromAt, instantIn(row, Column{4}));
    const auto reached = row.optionalText(Column{5});
    person.isAcquainted = person.isAcquainted || (reached && *reached <= asOfText_);
  }

  Gathered* personOf(std::string_view identityID) {
    const auto found = positions_.find(std::string{identityID});
    return found == positions_.end() ? nullptr : &people_[found->second];
  }

  void readWeeks() {
    auto rows = connection_.query(R"sql(
SELECT week, source_identity_id, sent, received, in_company, met
FROM contact_week
WHERE week > ?1 AND week <= ?2
ORDER BY week
)sql",
                                  week_ - static_cast<std::int64_t>(weeksOfHistory), week_);
    while (rows.next()) {
      if (auto* person = personOf(rows.text(Column{1}))) {
        addWeek(*person, rows);
      }
    }
  }

  void addWeek(Gathered& person, const Query& row) const {
    const auto week = row.integer(Column{0});
    const auto sent = row.integer(Column{2});
    const auto received = row.integer(Column{3});
    const auto met = row.integer(Column{5});
    const auto exchanged = sent + received + row.integer(Column{4}) + met;
    if (exchanged <= 0) {
      return;
    }
    if (week > week_ - weeksOfAYear) {
      person.summary.exchangedLastYear += exchanged;
    } else if (week > week_ - 2 * weeksOfAYear) {
      person.summary.exchangedYearBefore += exchanged;
    }
    auto& tally = person.tally;
    tally.addActiveWeek(week, week_);
    tally.hasReached = tally.hasReached || sent + met > 0;
    tally.hasHeard = tally.hasHeard || received + met > 0;
    tally.hasReceived = tally.hasReceived || received > 0;
    tally.lastWeekSent = sent > 0 ? week : tally.lastWeekSent;
  }

  /// A mail later than the meeting's week tells that the meeting is not the last contact.
  void readMeetings() {
    std::vector<std::string> identityIDs;
    {
      auto rows = connection_.query(R"sql(
SELECT source_identity_id, max(week)
FROM contact_week
WHERE met > 0 AND week <= ?
GROUP BY source_identity_id
)sql",
                                    week_);
      while (rows.next()) {
        const auto* person = personOf(rows.text(Column{0}));
        if (person != nullptr && rows.integer(Column{1}) >= weekOfLastMail(*person)) {
          identityIDs.emplace_back(rows.text(Column{0}));
        }
      }
    }
    for (const auto& identityID : identityIDs) {
      auto& lastMetAt = personOf(identityID)->lastMetAt;
      lastMetAt = std::max(lastMetAt, lastMeetingWith(identityID));
    }
  }

  static std::int64_t weekOfLastMail(const Gathered& person) {
    const auto last = std::max(person.lastMailToAt, person.lastMailFromAt);
    return last ? contactWeekOf(*last) : std::numeric_limits<std::int64_t>::min();
  }

  std::optional<Instant> lastMeetingWith(const std::string& identityID) {
    const auto at = connection_.fetchOptionalText(R"sql(
SELECT max(i.occurred_at)
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id AND i.kind = 'meeting'
WHERE present.source_identity_id = ? AND i.occurred_at <= ?
)sql",
                                                  identityID, asOfText_);
    return at ? parseInternetDateTime(*at) : std::nullopt;
  }

  /// What is hidden waits for nobody, nor what came before the user put the person's item aside for good.
  void readWaiting() {
    auto rows = connection_.query(R"sql(
SELECT waiting.source_identity_id, waiting.since
FROM waiting_thread waiting
WHERE waiting.since BETWEEN ?1 AND ?2
  AND waiting.thread_id NOT IN (
    SELECT target_id FROM exclusion_rule WHERE scope = 'thread' AND ended_at IS NULL)
  AND NOT EXISTS (
    SELECT 1
    FROM identity_membership im
    JOIN relationship_attention_disposition decided ON decided.person_id = im.canonical_person_id
    WHERE im.source_identity_id = waiting.source_identity_id AND im.ended_at IS NULL
      AND decided.state IN ('dismissed', 'resolved') AND decided.updated_at >= waiting.since)
)sql",
                                  formatInternetDateTime(instantBySubtractingDays(asOf_, olderAfterDays)), asOfText_);
    while (rows.next()) {
      auto* person = personOf(rows.text(Column{0}));
      if (person != nullptr && person->isAcquainted) {
        auto& summary = person->summary;
        summary.waiting = WaitingSide::user;
        summary.waitingSince = std::max(summary.waitingSince, instantIn(rows, Column{1}));
      }
    }
  }

  /// The time of the last mail where it is past, or else what the weeks tell of it.
  std::optional<Instant> lastContactWith(const Gathered& person) const {
    auto last = person.lastMetAt;
    bool liesAhead = false;
    for (const auto& mail : {person.lastMailToAt, person.lastMailFromAt}) {
      liesAhead = liesAhead || mail > asOf_;
      last = mail > asOf_ ? last : std::max(last, mail);
    }
    if (liesAhead && person.tally.activeWeeks > 0) {
      last = std::max(last, std::optional{std::min(asOf_, Instant{std::chrono::weeks{person.tally.lastActiveWeek}})});
    }
    return last;
  }

  void finish(Gathered& person) const {
    auto& summary = person.summary;
    summary.lastContactAt = lastContactWith(person);
    summary.standing = person.tally.standingAt(week_);
    if (summary.waiting == WaitingSide::nobody && isTheirTurn(person)) {
      summary.waiting = WaitingSide::them;
      summary.waitingSince = person.lastMailToAt;
    }
  }

  /// The user wrote last, to them or to few, and they are known to answer.
  bool isTheirTurn(const Gathered& person) const {
    const auto& wrote = person.lastMailToAt;
    return wrote && wrote > person.lastMailFromAt && wrote > person.lastMetAt && person.tally.hasReceived &&
           person.tally.lastWeekSent == contactWeekOf(*wrote) &&
           *wrote <= instantBySubtractingDays(asOf_, daysToAnswer) &&
           *wrote > instantBySubtractingDays(asOf_, olderAfterDays);
  }

  Instant asOf_;
  std::string asOfText_;
  std::int64_t week_;
  Connection& connection_;
  std::vector<Gathered> people_;
  std::unordered_map<std::string, std::size_t> positions_;
};

/// Those whose field is `value`, the greatest by `order` first, and in key order where it does not decide.
template <typename Field, typename Value, typename Order>
std::vector<ContactSummary> groupOf(const std::vector<ContactSummary>& overview, Field field, Value value,
                                    Order order) {
  std::vector<ContactSummary> group;
  std::ranges::copy_if(overview, std::back_inserter(group), [&](const auto& person) { return person.*field == value; });
  std::ranges::sort(group, [&order](const ContactSummary& person, const ContactSummary& other) {
    const auto here = std::invoke(order, person);
    const auto there = std::invoke(order, other);
    return here == there ? person.personKey < other.personKey : there < here;
  });
  return group;
}

} // namespace

std::string_view caseName(ContactStanding standing) noexcept {
  switch (standing) {
    case ContactStanding::driftedAway:
      return "driftedAway";
    case ContactStanding::inTouch:
      return "inTouch";
    case ContactStanding::acquainted:
      return "acquainted";
  }
  return "unknown";
}

std::string_view caseName(WaitingSide side) noexcept {
  switch (side) {
    case WaitingSide::nobody:
      return "nobody";
    case WaitingSide::user:
      return "user";
    case WaitingSide::them:
      return "them";
  }
  return "unknown";
}

std::vector<ContactSummary> contactOverview(Session& session, Instant asOf) {
  return session.readableStore().read([asOf](Connection& connection) { return contactOverview(asOf, connection); });
}

std::vector<ContactSummary> contactOverview(Instant asOf, Connection& connection) {
  return OverviewReader(asOf, connection).read();
}

ContactGroups contactGroups(const std::vector<ContactSummary>& overview) {
  const auto exchanged = [](const ContactSummary& person) {
    return person.exchangedLastYear + person.exchangedYearBefore;
  };
  return {groupOf(overview, &ContactSummary::standing, ContactStanding::driftedAway, exchanged),
          groupOf(overview, &ContactSummary::standing, ContactStanding::inTouch, exchanged),
          groupOf(overview, &ContactSummary::waiting, WaitingSide::user, &ContactSummary::waitingSince),
          groupOf(overview, &ContactSummary::waiting, WaitingSide::them, &ContactSummary::waitingSince)};
}

} // namespace orvan
