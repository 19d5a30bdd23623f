#include "application/import/ledger/people_ledger.h"

#include "OrvanStore/repeated_statement.h"
#include "application/import/ledger/bounded_text.h"
#include "application/import/ledger/forgotten_people.h"
#include "application/import/ledger/person_names.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

/// Cards (name_rank 3) are kept up to date by the user; of mail the first name told stays.
constexpr const char* upsertIdentity = R"sql(
INSERT INTO source_identity (id, address, display_name, name_rank)
VALUES (?, ?, ?, ?)
ON CONFLICT(id) DO UPDATE SET display_name = excluded.display_name, name_rank = excluded.name_rank
WHERE excluded.name_rank > name_rank
   OR (excluded.name_rank = name_rank AND name_rank = 3 AND excluded.display_name <> display_name)
)sql";

/// That a header names a list is more than its address or its use tells.
constexpr const char* insertKind = R"sql(
INSERT INTO mailbox_kind (source_identity_id, kind)
VALUES (?, ?)
ON CONFLICT DO UPDATE SET kind = excluded.kind WHERE excluded.kind = 'list'
)sql";

std::string_view textOf(MailboxKind kind) noexcept {
  switch (kind) {
    case MailboxKind::person:
      return "person";
    case MailboxKind::list:
      return "list";
    case MailboxKind::role:
      return "role";
    case MailboxKind::machine:
      return "machine";
  }
  return "person";
}

/// A membership that the user ended or gave to someone else stays as the user left it.
constexpr const char* insertMembership = R"sql(
INSERT INTO identity_membership (id, source_identity_id, canonical_person_id, state, ended_at)
VALUES (?1, ?1, ?2, 'high_conf', NULL)
ON CONFLICT(id) DO NOTHING
)sql";

constexpr const char* upsertPerson = R"sql(
INSERT INTO person (id, display_name, created_at)
VALUES (?, ?, ?)
ON CONFLICT(id) DO UPDATE SET display_name = excluded.display_name
)sql";

/// Whoever has the identity: a person of its own, when it is seen for the first time.
void writePerson(const std::string& identityID, const std::string& name, NameSource nameSource, std::string_view now,
                 Connection& connection) {
  const auto personID = personIDOf(identityID);
  connection.execute(insertMembership, identityID, personID);
  if (connection.changes() > 0) {
    connection.execute(upsertPerson, personID, name, now);
  } else {
    takeNameOfIdentity(identityID, name, nameSource, connection);
  }
}

} // namespace

const PeopleLedger::Mailbox& PeopleLedger::mailbox(const std::string& address) {
  const auto found = mailboxes_.find(address);
  return found != mailboxes_.end()
             ? found->second
             : mailboxes_.try_emplace(address, identityIDOf(address), kindOfMailbox(address)).first->second;
}

PeopleLedger::Identity& PeopleLedger::identity(const Mailbox& mailbox, std::string_view address) {
  auto& identity = identities_[mailbox.identityID];
  if (identity.address.empty()) {
    identity.address = leadingCharacters(std::string{address}, mostNameCharacters);
    identity.kind = textOf(mailbox.kind);
  }
  return identity;
}

std::string PeopleLedger::note(const std::string& address, std::string_view displayName, NameSource nameSource) {
  const auto& known = mailbox(address);
  auto& noted = identity(known, address);
  if (!displayName.empty() && nameSource > noted.nameSource) {
    noted.displayName = leadingCharacters(std::string{displayName}, mostNameCharacters);
    noted.nameSource = nameSource;
  }
  return known.identityID;
}

void PeopleLedger::noteList(const std::string& address) {
  identity(mailbox(address), address).kind = textOf(MailboxKind::list);
}

std::size_t PeopleLedger::bytes() const noexcept {
  constexpr std::size_t mailboxAndItsPerson = 512;
  return mailboxes_.size() * mailboxAndItsPerson;
}

void PeopleLedger::keepOnly(const std::set<std::string_view>& identityIDs) {
  std::erase_if(identities_, [&](const auto& identity) {
    return identity.second.kind != textOf(MailboxKind::list) && !identityIDs.contains(identity.first);
  });
}

void PeopleLedger::write(Connection& connection, std::string_view now) {
  const auto forgotten = ForgottenPeople::in(connection);
  RepeatedStatement upsertName(connection, upsertIdentity);
  for (const auto& [identityID, identity] : identities_) {
    if (forgotten.contains(identityID)) {
      continue;
    }
    const std::string& name = identity.displayName.empty() ? identity.address : identity.displayName;
    upsertName.execute(identityID, identity.address, name, static_cast<int>(identity.nameSource));
    const bool isChanged = connection.changes() > 0;
    if (identity.kind != textOf(MailboxKind::person)) {
      connection.execute(insertKind, identityID, identity.kind);
    }
    if (isChanged && identity.kind != textOf(MailboxKind::list)) {
      writePerson(identityID, name, identity.nameSource, now, connection);
    }
  }
  identities_.clear();
  mailboxes_.clear();
}

std::optional<std::string> personOfIdentity(std::string_view identityID, Connection& connection) {
  return connection.fetchOptionalText(
      "SELECT canonical_person_id FROM identity_membership "
      "WHERE source_identity_id = ? AND ended_at IS NULL AND state IN ('high_conf', 'confirmed')",
      identityID);
}

} // namespace orvan
