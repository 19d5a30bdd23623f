#include "application/import/ledger/person_names.h"

#include <optional>
#include <string>
#include <utility>

#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

void setName(std::string_view personID, std::string_view name, Connection& connection) {
  connection.execute("UPDATE person SET display_name = ?2 WHERE id = ?1 AND display_name <> ?2", personID, name);
}

/// Whether nobody has told a better name yet.
bool isAnAddress(std::string_view name, Connection& connection) {
  return connection.fetchOptionalInteger("SELECT 1 FROM source_identity WHERE id = ?", identityIDOf(name)).has_value();
}

std::optional<std::string> nameOf(std::string_view personID, Connection& connection) {
  return connection.fetchOptionalText("SELECT display_name FROM person WHERE id = ?", personID);
}

} // namespace

bool isNamedByUser(std::string_view personID, Connection& connection) {
  return connection.fetchOptionalInteger("SELECT 1 FROM person_naming WHERE person_id = ?", personID).has_value();
}

void takeNameOfIdentity(std::string_view identityID, std::string_view name, NameSource source, Connection& connection) {
  connection.execute(R"sql(
UPDATE person SET display_name = ?2
WHERE display_name <> ?2
  AND id = (SELECT canonical_person_id FROM identity_membership
            WHERE source_identity_id = ?1 AND ended_at IS NULL AND state IN ('high_conf', 'confirmed'))
  AND NOT EXISTS (SELECT 1 FROM person_naming naming WHERE naming.person_id = person.id)
  AND NOT EXISTS (
    SELECT 1
    FROM identity_membership im
    JOIN source_identity other ON other.id = im.source_identity_id
    WHERE im.canonical_person_id = person.id AND im.ended_at IS NULL AND other.id <> ?1 AND other.name_rank >= ?3
      AND other.display_name <> ?2)
)sql",
                     identityID, name, std::to_underlying(source));
}

void takeNameOfMerged(std::string_view survivorID, std::string_view otherID, Connection& connection) {
  const auto own = nameOf(survivorID, connection);
  const auto others = nameOf(otherID, connection);
  if (!own || !others || !isAnAddress(*own, connection) || isAnAddress(*others, connection)) {
    return;
  }
  if (isNamedByUser(otherID, connection)) {
    renamePerson(survivorID, *others, connection);
  } else {
    setName(survivorID, *others, connection);
  }
}

void takeUsersNameOf(std::string_view otherID, std::string_view survivorID, Connection& connection) {
  if (isNamedByUser(otherID, connection) && !isNamedByUser(survivorID, connection)) {
    renamePerson(survivorID, nameOf(otherID, connection).value_or(""), connection);
  }
}

void nameAfterThoseThatStayed(std::string_view personID, std::string_view leftIdentityID, Connection& connection) {
  connection.execute(R"sql(
UPDATE person SET display_name = stayed.display_name
FROM (
  SELECT mailbox.display_name
  FROM identity_membership im
  JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
  WHERE im.canonical_person_id = ?1 AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  ORDER BY mailbox.display_name = (SELECT display_name FROM person WHERE id = ?1) DESC, mailbox.name_rank DESC, mailbox.id
  LIMIT 1
) stayed
WHERE person.id = ?1
  AND person.display_name = (SELECT gone.display_name FROM source_identity gone WHERE gone.id = ?2)
  AND NOT EXISTS (SELECT 1 FROM person_naming naming WHERE naming.person_id = ?1)
)sql",
                     personID, leftIdentityID);
}

void nameAfterIdentities(std::string_view personID, Connection& connection) {
  connection.execute("DELETE FROM person_naming WHERE person_id = ?", personID);
  connection.execute(R"sql(
UPDATE person SET display_name = best.display_name
FROM (
  SELECT mailbox.display_name
  FROM identity_membership im
  JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
  WHERE im.canonical_person_id = ?1 AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
  ORDER BY mailbox.name_rank DESC, mailbox.id
  LIMIT 1
) best
WHERE person.id = ?1
)sql",
                     personID);
}

void renamePerson(std::string_view personID, std::string_view name, Connection& connection) {
  setName(personID, name, connection);
  connection.execute(R"sql(
INSERT INTO person_naming (person_id, name_rank)
VALUES (?, ?)
ON CONFLICT(person_id) DO UPDATE SET name_rank = excluded.name_rank
)sql",
                     personID, std::to_underlying(NameSource::user));
}

} // namespace orvan
