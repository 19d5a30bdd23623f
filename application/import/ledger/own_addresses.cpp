#include "application/import/ledger/own_addresses.h"

#include "application/import/ledger/own_address_takings.h"
#include "application/import/ledger/question_ledger.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

bool wasReadWith(const std::string& address, Connection& connection) {
  return connection.fetchOptionalInteger("SELECT was_read_with FROM own_address WHERE address = ?", address)
             .value_or(0) != 0;
}

/// The next reading of every source begins at its beginning: what was read was read for other addresses. That of one
/// that is being read just now does, too.
void forgetHowFarSourcesWereRead(Connection& connection) {
  connection.execute("UPDATE remembered_source SET read_for = NULL");
}

/// Which mails were from or to the address is not known of each, so all are read again. Until then they stay, and what
/// they answer is told by those that are read.
void markMailsOutdated(Connection& connection) {
  connection.execute(R"sql(
UPDATE mail_reference SET
  state = CASE state WHEN 'own' THEN 'outdated_own'
                     WHEN 'direct' THEN 'outdated'
                     WHEN 'group' THEN 'outdated'
                     ELSE state END,
  is_answered = 0
WHERE state IN ('own', 'direct', 'group') OR is_answered
)sql");
  connection.execute(
      "INSERT OR IGNORE INTO outdated_mail (interaction_id) "
      "SELECT id FROM interaction WHERE direction = 'outbound'");
  forgetAnswers(connection);
}

} // namespace

std::string_view caseName(ToldBy toldBy) noexcept {
  return toldBy == ToldBy::user ? "user" : "import";
}

std::vector<OwnAddress> ownAddresses(Connection& connection) {
  std::vector<OwnAddress> addresses;
  auto rows = connection.query("SELECT address, told_by, has_mail FROM own_address ORDER BY address");
  while (rows.next()) {
    const bool isKnown = !rows.holdsNull(Column{2});
    addresses.push_back({std::string{rows.text(Column{0})},
                         rows.text(Column{1}) == caseName(ToldBy::user) ? ToldBy::user : ToldBy::import,
                         isKnown ? std::optional{rows.integer(Column{2}) != 0} : std::nullopt});
  }
  return addresses;
}

std::set<std::string> rememberOwnAddresses(std::span<const std::string> addresses, std::string_view now,
                                           Connection& connection, ToldBy toldBy) {
  for (const auto& address : addresses) {
    connection.execute(R"sql(
INSERT INTO own_address (address, told_by, has_mail, was_read_with)
VALUES (?, ?, 0, 0)
ON CONFLICT DO NOTHING
)sql",
                       address, caseName(toldBy));
    if (connection.changes() > 0) {
      takeFromOthers(identityIDOf(address), now, connection);
      forgetHowFarSourcesWereRead(connection);
    }
  }
  std::set<std::string> all;
  for (const auto& own : ownAddresses(connection)) {
    all.insert(own.address);
  }
  return all;
}

GivenUp giveUpOwnAddress(const std::string& address, std::string_view now, Connection& connection) {
  const bool wasRead = wasReadWith(address, connection);
  connection.execute("DELETE FROM own_address WHERE address = ?", address);
  giveBack(identityIDOf(address), now, connection);
  if (!wasRead) {
    return GivenUp::asItWas;
  }
  markMailsOutdated(connection);
  forgetHowFarSourcesWereRead(connection);
  return GivenUp::toBeReadAgain;
}

void noteReadingWithOwnAddresses(Connection& connection) {
  connection.execute("UPDATE own_address SET was_read_with = 1 WHERE was_read_with = 0");
}

void noteMailOf(const std::set<std::string>& addresses, Connection& connection) {
  for (const auto& address : addresses) {
    connection.execute("UPDATE own_address SET has_mail = 1 WHERE address = ? AND has_mail IS NOT 1", address);
  }
}

} // namespace orvan
