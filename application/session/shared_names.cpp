#include "application/session/shared_names.h"

#include <unicode/unistr.h>

#include <cstdint>
#include <string_view>

#include "OrvanPlatform/white_space.h"

namespace orvan {
namespace {

std::string folded(std::string_view name) {
  const auto text = trimmed(name);
  std::string without;
  icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())}).foldCase().toUTF8String(without);
  return without;
}

} // namespace

SharedNames::SharedNames(std::span<const ContactOutlook> everybody) {
  std::unordered_set<std::string> seen;
  for (const auto& person : everybody) {
    if (const auto [name, isNew] = seen.insert(folded(person.displayName)); !isNew) {
      folded_.insert(*name);
    }
  }
}

std::optional<std::string> SharedNames::addressToTell(const std::string& displayName, const std::string& personKey,
                                                      Connection& connection) const {
  if (!folded_.contains(folded(displayName))) {
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
