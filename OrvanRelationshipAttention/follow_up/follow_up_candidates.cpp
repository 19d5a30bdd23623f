#include "OrvanRelationshipAttention/follow_up/internal/follow_up_candidates.h"

#include <vector>

#include "OrvanPlatform/human_date.h"
#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"
#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"
#include "OrvanSpineCore/action_effect_store.h"

namespace orvan {
namespace internal {
namespace {

constexpr std::string_view generatorVersion = "followup-upsert-projection-v1";

void insertCandidate(Connection& connection, const std::string& candidateKey, const CandidateSource& source) {
  connection.execute(R"sql(
    INSERT INTO relationship_attention_candidate
      (candidate_key, person_id, kind, why_now_code, defining_event_at, due_at, expires_at, generator_version, created_at)
    VALUES (?, ?, 'unresolved_followup', 'commitment', ?, ?, NULL, ?, ?)
    ON CONFLICT(candidate_key) DO UPDATE SET
      person_id = excluded.person_id,
      due_at = excluded.due_at,
      generator_version = excluded.generator_version
  )sql",
                     candidateKey, source.personID, source.detectedAt, source.dueAt, generatorVersion,
                     source.createdAt);
}

void insertEvidence(Connection& connection, const std::string& candidateKey, const std::string& openLoopID) {
  connection.execute(R"sql(
    INSERT OR IGNORE INTO relationship_attention_candidate_evidence (candidate_key, reference_kind, reference_id)
    VALUES (?, 'open_loop', ?)
  )sql",
                     candidateKey, openLoopID);
}

/// What a candidate needs of a scheduled follow-up's row.
struct ScheduledRow {
  std::string dueAt;
  std::string openLoopID;
};

std::vector<ScheduledRow> scheduledRows(Connection& connection, const std::string& personID) {
  std::vector<ScheduledRow> scheduled;
  auto rows = connection.query(R"sql(
    SELECT source_object_id, due_at, open_loop_id
    FROM follow_up
    WHERE person_id = ? AND state = 'scheduled'
  )sql",
                               personID);
  const Column dueAt = rows.column("due_at");
  const Column openLoopID = rows.column("open_loop_id");
  while (rows.next()) {
    scheduled.push_back({.dueAt = std::string{rows.text(dueAt)}, .openLoopID = std::string{rows.text(openLoopID)}});
  }
  return scheduled;
}

} // namespace

AttentionWhyNowItem followUpWhyNow(const std::string& openLoopID, const std::string& detectedAt,
                                   const std::string& noticed) {
  return AttentionWhyNowItemMaker::make(AttentionWhyNowItem::Kind::commitment, detectedAt,
                                        "A follow-up with them is coming due.", {"Noticed " + noticed + "."},
                                        {AttentionWhyNowEvidenceReference::openLoop(openLoopID)});
}

void projectCandidate(Connection& connection, const CandidateSource& source) {
  const auto key = AttentionCatchUpItemMaker::itemKey(
      source.personID, followUpWhyNow(source.openLoopID, source.detectedAt, source.detectedAt));
  if (key.has_value()) {
    insertCandidate(connection, *key, source);
    insertEvidence(connection, *key, source.openLoopID);
  }
}

} // namespace internal

std::optional<AttentionCatchUpItem> FollowUpScheduler::attentionItem(const std::string& personID,
                                                                     const std::string& openLoopID,
                                                                     const std::string& detectedAt) {
  return internal::AttentionCatchUpItemMaker::make(personID, personID,
                                                   internal::followUpWhyNow(openLoopID, detectedAt, detectedAt));
}

std::optional<AttentionCatchUpItem> FollowUpScheduler::attentionItem(const std::string& personID,
                                                                     const std::string& displayName,
                                                                     const std::string& openLoopID,
                                                                     const std::string& detectedAt) {
  const auto noticedAt = ActionEffectStore::parse(detectedAt);
  return internal::AttentionCatchUpItemMaker::make(
      personID, displayName,
      internal::followUpWhyNow(openLoopID, detectedAt, noticedAt ? humanDateText(*noticedAt) : detectedAt));
}

void FollowUpScheduler::retractCandidate(Connection& connection, const std::string& openLoopID) {
  connection.execute(R"sql(
    DELETE FROM relationship_attention_candidate
    WHERE candidate_key IN (
            SELECT candidate_key FROM relationship_attention_candidate_evidence
            WHERE reference_kind = 'open_loop' AND reference_id = ?
          )
      AND NOT EXISTS (
            SELECT 1 FROM relationship_attention_disposition d
            WHERE d.candidate_key = relationship_attention_candidate.candidate_key
          )
  )sql",
                     openLoopID);
}

void FollowUpScheduler::reprojectCandidatesCore(Connection& connection, const std::string& personID) {
  for (const auto& row : internal::scheduledRows(connection, personID)) {
    const auto detectedAt = internal::openLoopDetectedAt(connection, row.openLoopID);
    if (detectedAt.has_value()) {
      internal::projectCandidate(connection, {.personID = personID,
                                              .openLoopID = row.openLoopID,
                                              .detectedAt = *detectedAt,
                                              .dueAt = row.dueAt,
                                              .createdAt = *detectedAt});
    }
  }
}

} // namespace orvan
