#include "OrvanObservatory/contact_outlook.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "OrvanObservatory/contact_week.h"
#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

using Days = std::chrono::duration<double, std::chrono::days::period>;

/// What lies further back no longer says whom the user deals with.
constexpr std::int64_t weeksLookedAt = 52;
constexpr std::int64_t weeksOfMeetingsAhead = 3;
/// A quiet stretch of 21 days spans at least this many weeks from the one before it to the one after it.
constexpr std::int64_t weeksOfAQuietStretch = 3;
/// A resumption within 30 days lies within this many weeks.
constexpr std::int64_t weeksOfAResumption = 5;
constexpr std::int64_t weeksOfWaiting = olderAfterDays / 7 + 1;

/// What is gathered of a person on the way.
struct Tally {
  double sent = 0;
  double received = 0;
  double inCompany = 0;
  std::optional<std::int64_t> previousWeek;
};

/// By identity, which is how contact is counted.
using PersonOfIdentity = std::unordered_map<std::string, std::size_t>;

class OutlookReader {
 public:
  OutlookReader(Instant asOf, Connection& connection)
      : asOf_(asOf), asOfText_(formatInternetDateTime(asOf)), week_(contactWeekOf(asOf)), connection_(connection) {}

  std::vector<ContactOutlook> read() {
    readPeople();
    readSpans();
    readWeeks();
    readWaiting();
    readOpenLoops();
    readHidden();
    for (std::size_t person = 0; person < outlooks_.size(); ++person) {
      const auto& tally = tallies_[person];
      outlooks_[person].exchange =
          2 * std::log1p(tally.sent) + std::log1p(tally.received) + 0.3 * std::log1p(tally.inCompany);
    }
    sort();
    return std::move(outlooks_);
  }

 private:
  void readPeople() {
    std::unordered_map<std::string, std::size_t> positions;
    for (const auto& person : StoreProjectionReader::project(1, connection_).people()) {
      positions.emplace(person.personKey(), outlooks_.size());
      auto& outlook = outlooks_.emplace_back();
      outlook.personKey = person.personKey();
      outlook.displayName = person.displayName();
      outlook.isUncounted = true;
    }
    tallies_.resize(outlooks_.size());
    auto rows = connection_.query(R"sql(
SELECT source_identity_id, canonical_person_id
FROM identity_membership
WHERE ended_at IS NULL AND state IN ('high_conf', 'confirmed')
)sql");
    while (rows.next()) {
      if (const auto found = positions.find(std::string{rows.text(Column{1})}); found != positions.end()) {
        people_.emplace(rows.text(Column{0}), found->second);
      }
    }
    positions_ = std::move(positions);
  }

  std::optional<std::size_t> personOf(std::string_view identityID) const {
    const auto found = people_.find(std::string{identityID});
    return found == people_.end() ? std::nullopt : std::optional{found->second};
  }

  void readSpans() {
    auto rows = connection_.query("SELECT source_identity_id, first_contact_at, first_reached_at FROM contact_span");
    while (rows.next()) {
      const auto person = personOf(rows.text(Column{0}));
      if (!person) {
        continue;
      }
      outlooks_[*person].isUncounted = false;
      const auto first = parseInternetDateTime(rows.text(Column{1}));
      if (first && contactWeekOf(*first) < week_ - weeksLookedAt) {
        // It may have been quiet ever since.
        tallies_[*person].previousWeek = contactWeekOf(*first);
      }
      const auto reached = rows.optionalText(Column{2});
      outlooks_[*person].isAcquainted = outlooks_[*person].isAcquainted || (reached && *reached <= asOfText_);
    }
    for (auto& outlook : outlooks_) {
      outlook.isAcquainted = outlook.isAcquainted || outlook.isUncounted;
    }
  }

  void readWeeks() {
    auto rows = connection_.query(R"sql(
SELECT week, source_identity_id, sent, received, in_company, met
FROM contact_week
WHERE week >= ?1 AND week <= ?2
ORDER BY week
)sql",
                                  week_ - weeksLookedAt, week_ + weeksOfMeetingsAhead);
    while (rows.next()) {
      if (const auto person = personOf(rows.text(Column{1}))) {
        count(*person, rows);
      }
    }
  }

  void count(std::size_t person, const Query& row) {
    const auto week = row.integer(Column{0});
    const auto sent = static_cast<double>(row.integer(Column{2}));
    const auto received = static_cast<double>(row.integer(Column{3}));
    const auto inCompany = static_cast<double>(row.integer(Column{4}));
    const auto met = static_cast<double>(row.integer(Column{5}));
    if (sent + received + inCompany + met <= 0) {
      return;
    }
    auto& outlook = outlooks_[person];
    outlook.mayMeet = outlook.mayMeet || (met > 0 && week >= week_);
    if (week > week_) {
      return;
    }
    auto& tally = tallies_[person];
    constexpr double halfLifeInWeeks = 4;
    const double weight = std::exp2(static_cast<double>(week - week_) / halfLifeInWeeks);
    tally.sent += weight * (sent + met);
    tally.received += weight * received;
    tally.inCompany += weight * inCompany;
    const bool wasQuiet = tally.previousWeek && week - *tally.previousWeek >= weeksOfAQuietStretch;
    outlook.mayHaveResumed = outlook.mayHaveResumed || (wasQuiet && week > week_ - weeksOfAResumption - 1);
    tally.previousWeek = week;
    if (received > 0 && week >= week_ - weeksOfWaiting) {
      lastReceived_[person] = week;
    }
  }

  bool hasLaterMail() const {
    return connection_
        .fetchOptionalInteger("SELECT 1 FROM contact_week WHERE week > ? AND sent + received > 0 LIMIT 1", week_)
        .has_value();
  }

  void readWaiting() {
    auto rows = connection_.query("SELECT source_identity_id, since FROM waiting_thread WHERE since <= ?", asOfText_);
    while (rows.next()) {
      if (const auto person = personOf(rows.text(Column{0}))) {
        keepLatest(outlooks_[*person].waitingSince, rows.text(Column{1}));
      }
    }
    if (!hasLaterMail()) {
      return;
    }
    for (const auto& [person, week] : lastReceived_) {
      auto& since = outlooks_[person].waitingSince;
      since = std::max(since.value_or(Instant{}), std::min(asOf_, Instant{std::chrono::weeks{week}}));
    }
  }

  void readOpenLoops() {
    auto rows = connection_.query(R"sql(
SELECT person_id, detected_at
FROM open_loop
WHERE state IN ('open', 'surfaced') AND evidence_ref IS NOT NULL
)sql");
    while (rows.next()) {
      const auto found = positions_.find(std::string{rows.text(Column{0})});
      if (found != positions_.end()) {
        keepLatest(outlooks_[found->second].openSince, rows.text(Column{1}));
      }
    }
  }

  void readHidden() {
    auto rows = connection_.query("SELECT target_id FROM exclusion_rule WHERE scope = 'person' AND ended_at IS NULL");
    while (rows.next()) {
      if (const auto found = positions_.find(std::string{rows.text(Column{0})}); found != positions_.end()) {
        outlooks_[found->second].isHidden = true;
      }
    }
  }

  static void keepLatest(std::optional<Instant>& latest, std::string_view text) {
    const auto instant = parseInternetDateTime(text);
    if (instant && (!latest || *latest < *instant)) {
      latest = instant;
    }
  }

  /// In which part of the order a person comes; lesser is earlier.
  int rankOf(const ContactOutlook& outlook) const {
    if (!outlook.canHaveReason()) {
      return 4;
    }
    const auto recent = instantBySubtractingDays(asOf_, olderAfterDays);
    const bool isOpen = outlook.openSince && *outlook.openSince > recent;
    if (outlook.mayMeet || (isOpen && outlook.isAcquainted)) {
      return 0;
    }
    const bool isCurrent = isOpen || outlook.mayHaveResumed || outlook.isUncounted ||
                           (outlook.waitingSince && *outlook.waitingSince > recent);
    if (!isCurrent) {
      return 3;
    }
    return outlook.isAcquainted ? 1 : 2;
  }

  double worth(const ContactOutlook& outlook) const {
    const auto latest = std::max(outlook.waitingSince.value_or(Instant{}), outlook.openSince.value_or(Instant{}));
    return worthOf(outlook.exchange, asOf_ - latest);
  }

  void sort() {
    std::ranges::sort(outlooks_, {}, [this](const ContactOutlook& outlook) {
      return std::tuple{rankOf(outlook), -worth(outlook), std::string_view{outlook.personKey}};
    });
  }

  Instant asOf_;
  std::string asOfText_;
  std::int64_t week_;
  Connection& connection_;
  std::vector<ContactOutlook> outlooks_;
  std::vector<Tally> tallies_;
  std::unordered_map<std::string, std::size_t> positions_;
  PersonOfIdentity people_;
  std::unordered_map<std::size_t, std::int64_t> lastReceived_;
};

} // namespace

std::vector<ContactOutlook> contactOutlooks(Instant asOf, Connection& connection) {
  return OutlookReader(asOf, connection).read();
}

double worthOf(double exchange, std::chrono::duration<double> age) noexcept {
  constexpr Days halfLife{14};
  return exchange + std::exp2(-std::max(Days{age}, Days::zero()) / halfLife);
}

} // namespace orvan
