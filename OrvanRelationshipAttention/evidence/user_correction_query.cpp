#include <algorithm>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"

namespace orvan::internal {
namespace {

constexpr std::string_view ofThePerson =
    "SELECT created_at FROM user_correction\n"
    "WHERE target_type = 'person' AND target_id = ?";

constexpr std::string_view ofTheirClaims =
    "SELECT uc.created_at AS created_at FROM user_correction uc\n"
    "JOIN claim c ON c.id = uc.target_id\n"
    "WHERE uc.target_type = 'claim' AND c.person_id = ?";

constexpr std::string_view ofTheirMemberships =
    "SELECT uc.created_at AS created_at FROM user_correction uc\n"
    "JOIN identity_membership im ON im.id = uc.target_id\n"
    "WHERE uc.target_type = 'identity_membership' AND im.canonical_person_id = ?";

} // namespace

EvidenceQueries::UserCorrections EvidenceQueries::fetchUserCorrections(std::string_view personKey, Instant asOf,
                                                                       Connection& connection) const {
  const auto windowStart = formatInternetDateTime(instantBySubtractingDays(asOf, options_.recentWindowDays()));
  UserCorrections corrections;
  for (const auto statement : {ofThePerson, ofTheirClaims, ofTheirMemberships}) {
    auto rows = connection.query(statement, personKey);
    const Column createdAtColumn = rows.column("created_at");
    while (rows.next()) {
      const auto createdAt = rows.optionalText(createdAtColumn);
      if (!createdAt) {
        continue;
      }
      corrections.countInWindow += *createdAt >= windowStart ? 1 : 0;
      if (!corrections.lastAt || *corrections.lastAt < *createdAt) {
        corrections.lastAt = *createdAt;
      }
    }
  }
  return corrections;
}

} // namespace orvan::internal
