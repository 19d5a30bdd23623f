#include "application/session/shared_names.h"

#include "OrvanPlatform/folded_text.h"

namespace orvan {

void SharedNames::add(const std::string& displayName, std::unordered_set<std::string>& seen) {
  if (const auto [name, isNew] = seen.insert(withoutCase(displayName)); !isNew) {
    folded_.insert(*name);
  }
}

std::optional<std::string> SharedNames::addressToTell(const std::string& displayName, const std::string& personKey,
                                                      Connection& connection) const {
  if (!folded_.contains(withoutCase(displayName))) {
    return std::nullopt;
  }
  return connection.fetchOptionalText(R"sql(
SELECT min(mailbox.address)
FROM identity_membership im
JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
WHERE im.canonical_person_id = ? AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
)sql",
                                      personKey);
}

} // namespace orvan
