#include "application/session/own_address_change.h"

#include <algorithm>

#include "application/import/ledger/own_addresses.h"
#include "application/import/ledger/people_ledger.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {

std::optional<AddressHolder> holderOfAddress(const std::string& address, Connection& connection) {
  const auto identityID = identityIDOf(address);
  const auto personKey = personOfIdentity(identityID, connection);
  if (!personKey) {
    return std::nullopt;
  }
  const auto name = connection.fetchOptionalText("SELECT display_name FROM person WHERE id = ?", *personKey);
  const auto other = connection.fetchOptionalInteger(R"sql(
SELECT 1 FROM identity_membership
WHERE canonical_person_id = ? AND source_identity_id <> ? AND ended_at IS NULL AND state IN ('high_conf', 'confirmed')
)sql",
                                                     *personKey, identityID);
  return AddressHolder{*personKey, name.value_or(address), other.has_value()};
}

std::vector<AddedOwnAddress> addOwnAddresses(const std::vector<std::string>& addresses, std::string_view now,
                                             Connection& connection) {
  const auto known = ownAddresses(connection);
  std::vector<AddedOwnAddress> added;
  for (const auto& address : addresses) {
    const bool isKnown = std::ranges::find(known, address, &OwnAddress::address) != known.end();
    const bool isRepeated = std::ranges::find(added, address, &AddedOwnAddress::address) != added.end();
    if (!isKnown && !isRepeated) {
      added.push_back({address, holderOfAddress(address, connection)});
    }
  }
  rememberOwnAddresses(addresses, now, connection, ToldBy::user);
  return added;
}

bool isAnythingRead(Connection& connection) {
  return connection.fetchOptionalInteger(
             "SELECT EXISTS (SELECT 1 FROM mail_reference) OR EXISTS (SELECT 1 FROM calendar_entry)") != 0;
}

} // namespace orvan
