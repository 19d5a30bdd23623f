#include "OrvanRelationshipAttention/disposition_store/internal/disposition_rows.h"

#include <string>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan::internal {
namespace {

using Record = AttentionItemDispositionRecord;
using State = AttentionItemState;

constexpr std::string_view generatorVersion = "catchup-apply-time-v1";

std::string_view candidateKind(AttentionWhyNowItem::Kind kind) noexcept {
  switch (kind) {
    case AttentionWhyNowItem::Kind::openThread:
      return "counterpart_request";
    case AttentionWhyNowItem::Kind::changedContext:
      return "meaningful_change";
    case AttentionWhyNowItem::Kind::commitment:
      return "unresolved_followup";
    case AttentionWhyNowItem::Kind::upcomingInteraction:
      return "upcoming_interaction";
  }
  return {};
}

struct RecordColumns {
  explicit RecordColumns(const Query& rows)
      : candidateKey(rows.column("candidate_key")),
        state(rows.column("state")),
        snoozedUntil(rows.column("snoozed_until")) {}

  Column candidateKey;
  Column state;
  Column snoozedUntil;
};

std::optional<State> decodeSnooze(const Query& row, Column snoozedUntil) {
  const auto text = row.optionalText(snoozedUntil);
  const auto until = text ? parseInternetDateTime(*text) : std::nullopt;
  return until ? std::optional{State::snoozed(*until)} : std::nullopt;
}

std::optional<State> decodeState(const Query& row, const RecordColumns& columns) {
  const auto state = row.optionalText(columns.state);
  if (state == caseName(State::Kind::snoozed)) {
    return decodeSnooze(row, columns.snoozedUntil);
  }
  if (state == caseName(State::Kind::dismissed)) {
    return State::dismissed();
  }
  if (state == caseName(State::Kind::resolved)) {
    return State::resolved();
  }
  return std::nullopt;
}

/// An unreadable record is no fault: the next action on the item replaces it.
std::optional<Record> decode(const Query& row, const RecordColumns& columns) {
  const auto key = row.optionalText(columns.candidateKey);
  const auto state = decodeState(row, columns);
  return key && state ? std::optional<Record>{std::in_place, std::string{*key}, *state} : std::nullopt;
}

void insertCandidate(const AttentionCatchUpItem& item, Connection& connection, std::string_view now) {
  const auto kind = item.whyNow().kind();
  connection.execute(R"sql(INSERT INTO relationship_attention_candidate
  (candidate_key, person_id, kind, why_now_code, defining_event_at, due_at, expires_at, generator_version, created_at)
VALUES (?, ?, ?, ?, ?, NULL, NULL, ?, ?)
ON CONFLICT(candidate_key) DO UPDATE SET
  person_id = excluded.person_id, kind = excluded.kind, why_now_code = excluded.why_now_code,
  defining_event_at = excluded.defining_event_at, generator_version = excluded.generator_version)sql",
                     item.itemKey(), item.personKey(), candidateKind(kind), caseName(kind),
                     item.whyNow().definingEventTimestamp(), generatorVersion, now);
}

void insertEvidence(std::string_view itemKey, const AttentionWhyNowEvidenceReference& reference,
                    Connection& connection) {
  connection.execute(
      R"sql(INSERT OR IGNORE INTO relationship_attention_candidate_evidence (candidate_key, reference_kind, reference_id)
VALUES (?, ?, ?))sql",
      itemKey, reference.storedReferenceKind(), reference.identifier());
}

void materializeCandidate(const AttentionCatchUpItem& item, Connection& connection, std::string_view now) {
  insertCandidate(item, connection, now);
  for (const auto& reference : item.whyNow().evidenceReferences()) {
    insertEvidence(item.itemKey(), reference, connection);
  }
}

void insertDisposition(const Record& record, std::string_view personKey, Connection& connection, std::string_view now) {
  const auto until = record.state().until();
  const auto snoozedUntil = until ? std::optional{formatInternetDateTime(*until)} : std::nullopt;
  connection.execute(R"sql(INSERT INTO relationship_attention_disposition
  (candidate_key, person_id, state, snoozed_until, created_at, updated_at)
VALUES (?, ?, ?, ?, ?, ?)
ON CONFLICT(candidate_key) DO UPDATE SET
  person_id = excluded.person_id, state = excluded.state, snoozed_until = excluded.snoozed_until, updated_at = excluded.updated_at)sql",
                     record.itemKey(), personKey, caseName(record.state().kind()), snoozedUntil, now, now);
}

/// In this order, because a disposition refers to its candidate.
void removeDispositionAndCandidate(std::string_view itemKey, Connection& connection) {
  connection.execute("DELETE FROM relationship_attention_disposition WHERE candidate_key = ?", itemKey);
  connection.execute("DELETE FROM relationship_attention_candidate WHERE candidate_key = ?", itemKey);
}

} // namespace

std::optional<Record> loadRecord(std::string_view itemKey, Connection& connection) {
  auto row = connection.query(
      "SELECT candidate_key, state, snoozed_until FROM relationship_attention_disposition WHERE candidate_key = ?",
      itemKey);
  return row.next() ? decode(row, RecordColumns{row}) : std::nullopt;
}

std::vector<Record> loadRecords(std::string_view personID, Connection& connection) {
  std::vector<Record> records;
  auto rows = connection.query(
      "SELECT candidate_key, state, snoozed_until FROM relationship_attention_disposition WHERE person_id = ?",
      personID);
  const RecordColumns columns{rows};
  while (rows.next()) {
    if (auto record = decode(rows, columns)) {
      records.push_back(*std::move(record));
    }
  }
  return records;
}

void write(const Record& record, const AttentionCatchUpItem& item, Connection& connection, Instant now) {
  if (record.state() == State::active()) {
    removeDispositionAndCandidate(record.itemKey(), connection);
    return;
  }
  const auto nowText = formatInternetDateTime(now);
  materializeCandidate(item, connection, nowText);
  insertDisposition(record, item.personKey(), connection, nowText);
}

} // namespace orvan::internal
