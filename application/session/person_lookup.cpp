#include "application/session/person_lookup.h"

#include <vector>

#include "OrvanPlatform/error.h"
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
WHERE p.display_name = ?1 COLLATE NOCASE OR si.address = ?1 COLLATE NOCASE
LIMIT 2
)sql",
                               text);
  while (rows.next()) {
    keys.emplace_back(rows.text(Column{0}));
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

} // namespace orvan
