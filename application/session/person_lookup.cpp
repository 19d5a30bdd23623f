#include "application/session/person_lookup.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <unordered_set>

#include "OrvanPlatform/error.h"
#include "application/import/address/normal_address.h"
#include "application/session/session_error.h"

namespace orvan {
namespace {

bool isPersonKey(const std::string& text, Connection& connection) {
  return connection.fetchOptionalInteger("SELECT 1 FROM person WHERE id = ?", text).has_value();
}

/// Those who have the text as their name, or as one of their addresses; two at most.
std::vector<std::string> peopleCalled(const std::string& text, Connection& connection) {
  std::vector<std::string> keys;
  auto rows = connection.query(R"sql(
SELECT DISTINCT p.id
FROM person p
LEFT JOIN identity_membership im ON im.canonical_person_id = p.id AND im.ended_at IS NULL
LEFT JOIN source_identity si ON si.id = im.source_identity_id
WHERE p.display_name = ?1 COLLATE NOCASE OR si.address = ?2
LIMIT 2
)sql",
                               text, normalAddress(text));
  while (rows.next()) {
    keys.emplace_back(rows.text(Column{0}));
  }
  return keys;
}

icu::UnicodeString withoutCase(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())}).foldCase();
}

/// The keys of everybody with an address that holds `folded`.
std::unordered_set<std::string> peopleWithAddress(const icu::UnicodeString& folded, Connection& connection) {
  std::unordered_set<std::string> keys;
  auto rows = connection.query(R"sql(
SELECT im.canonical_person_id, si.address
FROM identity_membership im
JOIN source_identity si ON si.id = im.source_identity_id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
)sql");
  while (rows.next()) {
    if (withoutCase(rows.text(Column{1})).indexOf(folded) >= 0) {
      keys.emplace(rows.text(Column{0}));
    }
  }
  return keys;
}

} // namespace

std::string personKeyCalled(const std::string& text, Connection& connection) {
  if (isPersonKey(text, connection)) {
    return text;
  }
  const auto called = peopleCalled(text, connection);
  if (called.size() != 1) {
    throw Error(called.empty() ? SessionError::personUnknown : SessionError::personAmbiguous, "looking for a person");
  }
  return called.front();
}

std::vector<ProjectedPerson> peopleMatching(const std::string& text, const std::vector<ProjectedPerson>& people,
                                            Connection& connection) {
  const auto folded = withoutCase(text);
  const auto byAddress = peopleWithAddress(folded, connection);
  std::vector<ProjectedPerson> matching;
  std::ranges::copy_if(people, std::back_inserter(matching), [&](const ProjectedPerson& person) {
    return byAddress.contains(person.personKey()) || withoutCase(person.displayName()).indexOf(folded) >= 0;
  });
  return matching;
}

} // namespace orvan
