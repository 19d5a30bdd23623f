#include "OrvanObservatory/store_projection_reader.h"

#include <utility>

namespace orvan {
namespace {

/// Counting stops at the wanted number: a person with a long history costs no more than one with a short one.
constexpr const char* peopleStatement = R"sql(
SELECT p.id AS id, p.display_name AS display_name
FROM person p
WHERE (
    SELECT count(*) FROM (
      SELECT DISTINCT ip.interaction_id
      FROM identity_membership im
      JOIN interaction_participant ip ON ip.source_identity_id = im.source_identity_id
      WHERE im.canonical_person_id = p.id
        AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
      LIMIT ?1
    )
  ) >= ?1
  AND (
    NOT EXISTS (
      SELECT 1
      FROM identity_membership im
      JOIN mailbox_kind nobody ON nobody.source_identity_id = im.source_identity_id
      WHERE im.canonical_person_id = p.id
        AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
    )
    OR EXISTS (
      SELECT 1
      FROM identity_membership im
      WHERE im.canonical_person_id = p.id
        AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
        AND im.source_identity_id NOT IN (SELECT source_identity_id FROM mailbox_kind)
    )
  )
ORDER BY p.id
)sql";

Task<Projection> readProjection(std::shared_ptr<DatabaseQueue> database, std::int64_t minimumInteractions) {
  co_return database->read([minimumInteractions](Connection& connection) {
    return StoreProjectionReader::project(minimumInteractions, connection);
  });
}

} // namespace

StoreProjectionReader::StoreProjectionReader(std::shared_ptr<DatabaseQueue> database)
    : database_(std::move(database)) {}

StoreProjectionReader::StoreProjectionReader(std::shared_ptr<DatabaseQueue> database, Executor executor)
    : database_(std::move(database)), work_(std::move(executor)) {}

Task<Projection> StoreProjectionReader::project(std::int64_t minimumInteractions) {
  return runOn(work_.get(), readProjection(database_, minimumInteractions));
}

Projection StoreProjectionReader::project(std::int64_t minimumInteractions, Connection& connection) {
  std::vector<ProjectedPerson> people;
  auto rows = connection.query(peopleStatement, minimumInteractions);
  const Column id = rows.column("id");
  const Column displayName = rows.column("display_name");
  while (rows.next()) {
    if (const auto key = rows.optionalText(id)) {
      people.emplace_back(std::string{*key}, std::string{rows.optionalText(displayName).value_or("")});
    }
  }
  return Projection{std::move(people)};
}

} // namespace orvan
