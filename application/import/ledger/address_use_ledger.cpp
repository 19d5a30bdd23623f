#include "application/import/ledger/address_use_ledger.h"

#include <bit>

#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

/// Fewer mails, or fewer people writing to it, may be chance.
constexpr std::int64_t fewestMailsToAList = 20;
constexpr int fewestWritersToAList = 5;
/// Some lists send a notice in their own name now and then.
constexpr std::int64_t mailsToAListForOneFromIt = 50;

constexpr const char* upsertUse = R"sql(
INSERT INTO address_use (source_identity_id, named, named_by, written)
VALUES (?, ?, ?, ?)
ON CONFLICT DO UPDATE SET
  named = named + excluded.named, named_by = named_by | excluded.named_by, written = written + excluded.written
RETURNING named, named_by, written
)sql";

constexpr const char* insertLikelyList = R"sql(
INSERT INTO mailbox_kind (source_identity_id, kind)
VALUES (?, 'likely_list')
ON CONFLICT DO NOTHING
)sql";

constexpr const char* deleteLikelyList = R"sql(
DELETE FROM mailbox_kind
WHERE source_identity_id = ? AND kind = 'likely_list'
)sql";

/// Each writer has a bit, which others may share: enough to tell five people from one.
std::int64_t bitOf(std::string_view identityID) {
  constexpr unsigned bits = 62;
  std::uint64_t sum = 0;
  for (const char letter : identityID.substr(0, 4)) {
    sum = sum * 31 + static_cast<unsigned char>(letter);
  }
  return std::int64_t{1} << (sum % bits);
}

bool isUsedAsList(std::int64_t named, std::int64_t namedBy, std::int64_t written) {
  return named >= fewestMailsToAList && std::popcount(static_cast<std::uint64_t>(namedBy)) >= fewestWritersToAList &&
         written * mailsToAListForOneFromIt < named;
}

} // namespace

void AddressUseLedger::add(const PreparedMail& mail) {
  const auto writer = bitOf(mail.principalIdentityID);
  for (const auto& identityID : mail.namedIdentityIDs) {
    auto& use = uses_[identityID];
    ++use.named;
    use.namedBy |= writer;
  }
  ++uses_[mail.principalIdentityID].written;
}

void AddressUseLedger::write(Connection& connection) {
  RepeatedStatement upsert(connection, upsertUse);
  RepeatedStatement mark(connection, insertLikelyList);
  RepeatedStatement unmark(connection, deleteLikelyList);
  for (const auto& [identityID, use] : uses_) {
    auto& total = upsert.query(identityID, use.named, use.namedBy, use.written);
    const bool isList =
        total.next() && isUsedAsList(total.integer(Column{0}), total.integer(Column{1}), total.integer(Column{2}));
    (isList ? mark : unmark).execute(identityID);
  }
  uses_.clear();
}

std::set<std::string> listIdentityIDs(Connection& connection) {
  std::set<std::string> identityIDs;
  auto rows = connection.query("SELECT source_identity_id FROM mailbox_kind WHERE kind IN ('list', 'likely_list')");
  while (rows.next()) {
    identityIDs.emplace(rows.text(Column{0}));
  }
  return identityIDs;
}

} // namespace orvan
