#include "application/corrections/person_corrections.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanPlatform/white_space.h"
#include "application/corrections/action_journal.h"
#include "application/corrections/user_correction.h"
#include "application/import/ledger/identity_moves.h"
#include "application/import/ledger/person_names.h"

namespace orvan {
namespace {

/// A table, and which of its rows belong to a person: their keys, column by column.
struct RowsOfPerson {
  ChangedTable table;
  std::string_view select;
};

/// Every row that changes when identities move. What refers to another comes behind it.
constexpr RowsOfPerson rowsOfPerson[]{
    {ChangedTable::person, "SELECT id FROM person WHERE id = ?"},
    {ChangedTable::personNaming, "SELECT person_id FROM person_naming WHERE person_id = ?"},
    {ChangedTable::identityMembership, "SELECT id FROM identity_membership WHERE canonical_person_id = ?"},
    {ChangedTable::claim, "SELECT id FROM claim WHERE person_id = ?"},
    {ChangedTable::openLoop, "SELECT id FROM open_loop WHERE person_id = ?"},
    {ChangedTable::followUp, "SELECT id FROM follow_up WHERE person_id = ?"},
    {ChangedTable::candidate, "SELECT candidate_key FROM relationship_attention_candidate WHERE person_id = ?"},
    {ChangedTable::candidateEvidence, R"sql(
SELECT e.candidate_key, e.reference_kind, e.reference_id
FROM relationship_attention_candidate c
JOIN relationship_attention_candidate_evidence e ON e.candidate_key = c.candidate_key
WHERE c.person_id = ?
)sql"},
    {ChangedTable::disposition, "SELECT candidate_key FROM relationship_attention_disposition WHERE person_id = ?"},
};

std::size_t keyColumns(ChangedTable table) {
  return table == ChangedTable::candidateEvidence ? 3 : 1;
}

template <typename Watch>
void forEachRow(const std::string& personID, Connection& connection, Watch watch) {
  for (const auto& [table, select] : rowsOfPerson) {
    auto rows = connection.query(select, personID);
    while (rows.next()) {
      RowKey key;
      for (std::size_t column = 0; column < keyColumns(table); ++column) {
        key.emplace_back(rows.text(Column{static_cast<int>(column)}));
      }
      watch(table, std::move(key));
    }
  }
}

/// Finds out what becomes of people's rows: those that were there, and those that came.
class PeopleRecorder {
 public:
  PeopleRecorder(std::vector<std::string> personIDs, Connection& connection)
      : personIDs_(std::move(personIDs)), connection_(connection), recorder_(connection) {
    for (const auto& personID : personIDs_) {
      forEachRow(personID, connection_, [this](auto table, RowKey key) { recorder_.watch(table, std::move(key)); });
    }
  }

  ChangeRecorder& recorder() noexcept { return recorder_; }

  std::vector<Change> changes() {
    for (const auto& personID : personIDs_) {
      forEachRow(personID, connection_, [this](auto table, RowKey key) { recorder_.watchNew(table, std::move(key)); });
    }
    return recorder_.changes();
  }

 private:
  std::vector<std::string> personIDs_;
  Connection& connection_;
  ChangeRecorder recorder_;
};

[[noreturn]] void refuse(PersonCorrectionError error) {
  throw Error(error, "putting right who is who");
}

bool isHidden(const std::string& personID, Connection& connection) {
  return connection
      .fetchOptionalInteger(
          "SELECT 1 FROM exclusion_rule WHERE scope = 'person' AND target_id = ? AND ended_at IS NULL", personID)
      .has_value();
}

std::string nameOf(const std::string& personID, Connection& connection) {
  return connection.fetchOptionalText("SELECT display_name FROM person WHERE id = ?", personID).value_or("");
}

/// Namesakes are told apart by an address.
std::string nameAndAddressOf(const std::string& personID, Connection& connection) {
  const auto address = connection.fetchOptionalText(R"sql(
SELECT min(mailbox.address)
FROM identity_membership im
JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
WHERE im.canonical_person_id = ? AND im.ended_at IS NULL
)sql",
                                                    personID);
  return nameOf(personID, connection) + (address ? " (" + *address + ")" : "");
}

void requireDifferent(const std::string& survivorID, std::span<const std::string> otherIDs) {
  std::vector<std::string> all{otherIDs.begin(), otherIDs.end()};
  all.push_back(survivorID);
  std::ranges::sort(all);
  if (std::ranges::adjacent_find(all) != all.end()) {
    refuse(PersonCorrectionError::samePerson);
  }
}

void noteMoves(const PersonMoves& moves, Instant now, ChangeRecorder& recorder, Connection& connection) {
  for (const auto& identity : moves.identities) {
    noteCorrection(CorrectionTarget::identityMembership, identity.begunMembershipID, now, recorder, connection);
  }
}

struct Membership {
  std::string identityID;
  std::string personID;
};

Membership membershipOf(const std::string& address, Connection& connection) {
  auto row = connection.query(R"sql(
SELECT mailbox.id, im.canonical_person_id
FROM source_identity mailbox
JOIN identity_membership im
  ON im.source_identity_id = mailbox.id AND im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
WHERE mailbox.address = ?
)sql",
                              address);
  if (!row.next()) {
    refuse(PersonCorrectionError::addressUnknown);
  }
  return {std::string{row.text(Column{0})}, std::string{row.text(Column{1})}};
}

} // namespace

std::int64_t mergePeopleForUser(const std::string& survivorID, std::span<const std::string> otherIDs, Instant now,
                                Connection& connection) {
  requireDifferent(survivorID, otherIDs);
  std::vector<std::string> all{survivorID};
  std::string words = "made one with";
  for (const auto& otherID : otherIDs) {
    if (isHidden(otherID, connection) != isHidden(survivorID, connection)) {
      refuse(PersonCorrectionError::hiddenAndShown);
    }
    words += (&otherID == &otherIDs.front() ? " " : " and ") + nameAndAddressOf(otherID, connection);
    all.push_back(otherID);
  }
  PeopleRecorder people(std::move(all), connection);
  for (const auto& otherID : otherIDs) {
    const auto moves = mergePeople(otherID, survivorID, formatInternetDateTime(now), connection);
    takeNameOfMerged(survivorID, otherID, connection);
    noteMoves(moves, now, people.recorder(), connection);
  }
  return recordAction({UserActionKind::merge, survivorID, words, people.changes()}, now, connection);
}

PartedAddress splitAddress(const std::string& address, Instant now, Connection& connection) {
  const auto [identityID, personID] = membershipOf(address, connection);
  if (identitiesOf(personID, connection).size() == 1) {
    refuse(PersonCorrectionError::onlyAddress);
  }
  const auto nowText = formatInternetDateTime(now);
  const auto ownID = personIDForItself(identityID, connection);
  PeopleRecorder people({personID, ownID}, connection);
  makePersonFor(identityID, ownID, nowText, connection);
  const auto moves = moveIdentity(identityID, ownID, nowText, connection);
  nameAfterThoseThatStayed(personID, identityID, connection);
  noteMoves(moves, now, people.recorder(), connection);
  const auto action = recordAction(
      {UserActionKind::split, ownID, "parted from " + nameAndAddressOf(personID, connection), people.changes()}, now,
      connection);
  return {ownID, action};
}

std::int64_t renamePersonForUser(const std::string& personID, const std::string& name, Instant now,
                                 Connection& connection) {
  const auto before = nameOf(personID, connection);
  const auto after = std::string{trimmed(printableText(name))};
  if (after.empty()) {
    refuse(PersonCorrectionError::nameEmpty);
  }
  PeopleRecorder people({personID}, connection);
  renamePerson(personID, after, connection);
  noteCorrection(CorrectionTarget::person, personID, now, people.recorder(), connection);
  return recordAction({UserActionKind::rename, personID, "renamed from " + before, people.changes()}, now, connection);
}

std::optional<std::int64_t> giveNameBackForUser(const std::string& personID, Instant now, Connection& connection) {
  if (!isNamedByUser(personID, connection)) {
    return std::nullopt;
  }
  const auto before = nameOf(personID, connection);
  PeopleRecorder people({personID}, connection);
  nameAfterIdentities(personID, connection);
  noteCorrection(CorrectionTarget::person, personID, now, people.recorder(), connection);
  return recordAction({UserActionKind::rename, personID, "no longer called " + before, people.changes()}, now,
                      connection);
}

} // namespace orvan
