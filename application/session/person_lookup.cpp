#include "application/session/person_lookup.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <string_view>
#include <tuple>

#include "OrvanPlatform/folded_text.h"
#include "application/import/address/normal_address.h"
#include "application/session/nearest_words.h"

namespace orvan {
namespace {

using FoldedText = std::function<std::string(std::string_view)>;

/// Everybody of the store; with the first of their addresses, if they have any.
std::vector<NamedPerson> everybody(Connection& connection) {
  std::vector<NamedPerson> people;
  auto rows = connection.query(R"sql(
SELECT p.id, p.display_name, min(mailbox.address)
FROM person p
LEFT JOIN identity_membership im
  ON im.canonical_person_id = p.id AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
LEFT JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
GROUP BY p.id
)sql");
  while (rows.next()) {
    const auto address = rows.optionalText(Column{2});
    people.push_back({std::string{rows.text(Column{0})}, std::string{rows.optionalText(Column{1}).value_or("")},
                      address ? std::optional<std::string>{*address} : std::nullopt});
  }
  return people;
}

bool isPersonKey(const std::string& text, Connection& connection) {
  return connection.fetchOptionalInteger("SELECT 1 FROM person WHERE id = ?", text).has_value();
}

/// Whoever has the addresses now of somebody who has none any more; the same person when that is nobody, or several.
std::string personNowUnder(const std::string& personKey, Connection& connection) {
  auto rows = connection.query(R"sql(
SELECT DISTINCT live.canonical_person_id
FROM identity_membership past
JOIN identity_membership live ON live.source_identity_id = past.source_identity_id AND live.ended_at IS NULL
WHERE past.canonical_person_id = ?1 AND past.ended_at IS NOT NULL
  AND NOT EXISTS (SELECT 1 FROM identity_membership own
                  WHERE own.canonical_person_id = ?1 AND own.ended_at IS NULL)
)sql",
                               personKey);
  if (!rows.next()) {
    return personKey;
  }
  const std::string now{rows.text(Column{0})};
  return rows.next() ? personKey : now;
}

std::optional<std::string> personWithAddress(const std::string& text, Connection& connection) {
  const auto address = normalAddress(text);
  if (!address) {
    return std::nullopt;
  }
  return connection.fetchOptionalText(R"sql(
SELECT im.canonical_person_id
FROM source_identity mailbox
JOIN identity_membership im
  ON im.source_identity_id = mailbox.id AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
WHERE mailbox.address = ?
)sql",
                                      *address);
}

/// Those called so once both names are folded. Who has an address comes before who has none.
std::vector<NamedPerson> called(const std::string& text, const std::vector<NamedPerson>& people,
                                const FoldedText& folded) {
  const auto name = folded(text);
  std::vector<NamedPerson> found;
  std::ranges::copy_if(people, std::back_inserter(found),
                       [&](const auto& person) { return !name.empty() && folded(person.displayName) == name; });
  if (std::ranges::any_of(found, [](const auto& person) { return person.address.has_value(); })) {
    std::erase_if(found, [](const auto& person) { return !person.address; });
  }
  return found;
}

/// How far the text is from the nearest of the words that a person goes by.
std::size_t stepsTo(const NamedPerson& person, const std::string& plain) {
  const auto name = withoutAccents(person.displayName);
  auto steps = stepsBetween(plain, name);
  for (std::size_t start = 0; start < name.size();) {
    const auto end = std::min(name.find(' ', start), name.size());
    steps = std::min(steps, stepsBetween(plain, std::string_view{name}.substr(start, end - start)));
    start = end + 1;
  }
  return person.address ? std::min(steps, stepsBetween(plain, *person.address)) : steps;
}

std::vector<NamedPerson> nearest(const std::string& text, const std::vector<NamedPerson>& people) {
  constexpr std::size_t most = 3;
  const auto plain = withoutAccents(text);
  std::vector<std::tuple<std::size_t, std::size_t>> order;
  for (std::size_t index = 0; index < people.size(); ++index) {
    // What has hardly a letter in common is no slip of the hand.
    const auto steps = stepsTo(people[index], plain);
    if (people[index].address && steps <= plain.size() / 2) {
      order.emplace_back(steps, index);
    }
  }
  std::ranges::sort(order);
  std::vector<NamedPerson> found;
  for (std::size_t place = 0; place < std::min(most, order.size()); ++place) {
    found.push_back(people[std::get<1>(order[place])]);
  }
  return found;
}

} // namespace

std::string personKeyCalled(const std::string& text, Connection& connection) {
  if (isPersonKey(text, connection)) {
    return personNowUnder(text, connection);
  }
  if (auto withAddress = personWithAddress(text, connection)) {
    return *std::move(withAddress);
  }
  const auto people = everybody(connection);
  for (const auto& folded : {FoldedText{withoutCase}, FoldedText{withoutAccents}}) {
    auto found = called(text, people, folded);
    if (found.size() == 1) {
      return found.front().personKey;
    }
    if (!found.empty()) {
      throw PersonNotFound(SessionError::personAmbiguous, std::move(found));
    }
  }
  throw PersonNotFound(SessionError::personUnknown, nearest(text, people));
}

std::vector<std::string> addressesOf(const std::string& personKey, Connection& connection) {
  std::vector<std::string> addresses;
  auto rows = connection.query(R"sql(
SELECT mailbox.address
FROM identity_membership im
JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
WHERE im.canonical_person_id = ? AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
ORDER BY mailbox.address
)sql",
                               personKey);
  while (rows.next()) {
    addresses.emplace_back(rows.text(Column{0}));
  }
  return addresses;
}

} // namespace orvan
