#include "application/session/people_list.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "OrvanObservatory/contact_week.h"
#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/folded_text.h"
#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

using PersonOfKey = std::unordered_map<std::string, std::size_t>;

class ListReader {
 public:
  ListReader(Instant asOf, Connection& connection)
      : asOfText_(formatInternetDateTime(asOf)), week_(contactWeekOf(asOf)), connection_(connection) {}

  std::vector<ListedPerson> read() {
    readPeople();
    readMeetings();
    readIdentities();
    readHidden();
    return std::move(people_);
  }

 private:
  void readPeople() {
    for (const auto& person : StoreProjectionReader::project(1, connection_).people()) {
      positions_.emplace(person.personKey(), people_.size());
      auto& listed = people_.emplace_back();
      listed.personKey = person.personKey();
      listed.displayName = person.displayName();
    }
  }

  void readMeetings() {
    auto rows = connection_.query(R"sql(
SELECT source_identity_id, max(week)
FROM contact_week
WHERE met > 0 AND week <= ?
GROUP BY source_identity_id
)sql",
                                  week_);
    while (rows.next()) {
      weekOfMeeting_.emplace(rows.text(Column{0}), rows.integer(Column{1}));
    }
  }

  void readIdentities() {
    auto rows = connection_.query(R"sql(
SELECT im.canonical_person_id, mailbox.id, mailbox.address, span.mails_to, span.mails_from, span.last_mail_at,
       span.first_contact_at
FROM identity_membership im
JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
LEFT JOIN contact_span span ON span.source_identity_id = mailbox.id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
ORDER BY mailbox.address
)sql");
    while (rows.next()) {
      const auto found = positions_.find(std::string{rows.text(Column{0})});
      if (found != positions_.end()) {
        add(people_[found->second], rows);
      }
    }
  }

  void add(ListedPerson& person, const Query& row) {
    person.addresses.emplace_back(row.text(Column{2}));
    person.mailsTo += row.integer(Column{3});
    person.mailsFrom += row.integer(Column{4});
    const std::string identityID{row.text(Column{1})};
    const auto lastMailAt = row.optionalText(Column{5});
    if (row.holdsNull(Column{6}) || mayHaveMetSince(identityID, lastMailAt) || lastMailAt > asOfText_) {
      keepLatest(person.lastContactAt, lastContact(identityID));
    } else if (lastMailAt) {
      keepLatest(person.lastContactAt, std::string{*lastMailAt});
    }
  }

  bool mayHaveMetSince(const std::string& identityID, std::optional<std::string_view> lastMailAt) const {
    const auto met = weekOfMeeting_.find(identityID);
    const auto lastMail = lastMailAt ? parseInternetDateTime(*lastMailAt) : std::nullopt;
    return met != weekOfMeeting_.end() && (!lastMail || contactWeekOf(*lastMail) <= met->second);
  }

  std::optional<std::string> lastContact(const std::string& identityID) {
    return connection_.fetchOptionalText(R"sql(
SELECT max(i.occurred_at)
FROM interaction_participant present
JOIN interaction i ON i.id = present.interaction_id
WHERE present.source_identity_id = ? AND i.occurred_at <= ?
)sql",
                                         identityID, asOfText_);
  }

  static void keepLatest(std::optional<std::string>& latest, std::optional<std::string> at) {
    if (latest < at) {
      latest = std::move(at);
    }
  }

  void readHidden() {
    auto rows = connection_.query("SELECT target_id FROM exclusion_rule WHERE scope = 'person' AND ended_at IS NULL");
    while (rows.next()) {
      const auto found = positions_.find(std::string{rows.text(Column{0})});
      if (found != positions_.end()) {
        people_[found->second].visibility = Visibility::hidden;
      }
    }
  }

  std::string asOfText_;
  std::int64_t week_;
  Connection& connection_;
  std::vector<ListedPerson> people_;
  PersonOfKey positions_;
  std::unordered_map<std::string, std::int64_t> weekOfMeeting_;
};

bool holds(const ListedPerson& person, const std::string& plain) {
  return withoutAccents(person.displayName).contains(plain) ||
         std::ranges::any_of(person.addresses,
                             [&](const auto& address) { return withoutAccents(address).contains(plain); });
}

} // namespace

std::vector<ListedPerson> peopleList(Session& session, const std::string& text, Instant asOf) {
  auto people =
      session.readableStore().read([asOf](Connection& connection) { return ListReader(asOf, connection).read(); });
  if (const auto plain = withoutAccents(text); !plain.empty()) {
    std::erase_if(people, [&](const ListedPerson& person) { return !holds(person, plain); });
  }
  return people;
}

void sortByExchange(std::vector<ListedPerson>& people, Session& session, Instant asOf) {
  std::unordered_map<std::string_view, double> exchangeWith;
  for (const auto& outlook : session.outlooks(asOf)) {
    exchangeWith.emplace(outlook.personKey, outlook.exchange);
  }
  const auto place = [&](const ListedPerson& person) {
    const auto found = exchangeWith.find(person.personKey);
    return std::tuple{person.visibility == Visibility::shown, found == exchangeWith.end() ? 0 : found->second,
                      person.lastContactAt ? std::string_view{*person.lastContactAt} : ""};
  };
  std::ranges::sort(people, [&](const ListedPerson& person, const ListedPerson& other) {
    const auto here = place(person);
    const auto there = place(other);
    return here == there ? person.personKey < other.personKey : here > there;
  });
}

} // namespace orvan
