#include "OrvanRelationshipAttention/follow_up/follow_up_records.h"

#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_candidates.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"
#include "OrvanSpineCore/action_effect_store.h"

namespace orvan {
namespace {

using internal::loadFollowUp;
using internal::openLoopDetectedAt;
using internal::storedOpenLoopID;

constexpr std::string_view scheduled = "scheduled";
constexpr std::string_view completed = "completed";
constexpr std::string_view cancelled = "cancelled";

/// The open loop follows its follow-up.
std::string_view openLoopState(std::string_view followUpState) {
  if (followUpState == completed) {
    return "done";
  }
  return followUpState == cancelled ? "dismissed" : "open";
}

std::optional<PersistedFollowUp> ifScheduled(std::optional<PersistedFollowUp> followUp) {
  return followUp.has_value() && followUp->state() == scheduled ? std::move(followUp) : std::nullopt;
}

void requireScope(const PersistedFollowUp& followUp, const std::string& sourceObjectID, const std::string& personID) {
  if (followUp.sourceObjectID() != sourceObjectID || followUp.personID() != personID) {
    throw FollowUpScopeMismatch{};
  }
}

struct NewFollowUp {
  const std::string& id;
  const std::string& sourceObjectID;
  const std::string& personID;
  const std::string& dueAt;
  const std::string& now;
  const std::string& operationID;
  const std::string& openLoopID;
};

void insertFollowUp(Connection& connection, const NewFollowUp& row) {
  connection.execute(R"sql(
    INSERT INTO follow_up
      (id, source_object_id, person_id, due_at, state, created_at, completed_at, origin_operation_id, open_loop_id)
    VALUES (?, ?, ?, ?, 'scheduled', ?, NULL, ?, ?)
    ON CONFLICT(id) DO UPDATE SET
      due_at = excluded.due_at, state = 'scheduled', completed_at = NULL,
      origin_operation_id = excluded.origin_operation_id
  )sql",
                     row.id, row.sourceObjectID, row.personID, row.dueAt, row.now, row.operationID, row.openLoopID);
}

void insertOpenLoop(Connection& connection, const std::string& id, const std::string& personID,
                    const std::string& detectedAt, const std::string& now) {
  connection.execute(R"sql(
    INSERT INTO open_loop (id, person_id, kind, evidence_ref, detected_at, state, created_at)
    VALUES (?, ?, 'scheduled_followup', NULL, ?, 'open', ?)
    ON CONFLICT(id) DO UPDATE SET person_id = excluded.person_id, state = 'open'
  )sql",
                     id, personID, detectedAt, now);
}

/// Cancels a follow-up that has not been cancelled.
void retire(Connection& connection, const std::string& followUpID) {
  const std::string openLoopID = storedOpenLoopID(connection, followUpID);
  connection.execute("UPDATE follow_up SET state = 'cancelled', completed_at = NULL WHERE id = ?", followUpID);
  connection.execute("UPDATE open_loop SET state = 'dismissed' WHERE id = ?", openLoopID);
  FollowUpScheduler::retractCandidate(connection, openLoopID);
}

/// Undoes the making of a follow-up.
void restoreToNothing(Connection& connection, const std::string& followUpID) {
  const auto current = loadFollowUp(connection, followUpID);
  if (current.has_value() && current->state() != cancelled) {
    retire(connection, followUpID);
  }
}

void restoreTo(Connection& connection, const std::string& followUpID, const PersistedFollowUp& prior) {
  const std::string openLoopID = storedOpenLoopID(connection, followUpID);
  connection.execute("UPDATE follow_up SET due_at = ?, state = ?, completed_at = ? WHERE id = ?", prior.dueAt(),
                     prior.state(), prior.completedAt(), followUpID);
  connection.execute("UPDATE open_loop SET state = ? WHERE id = ?", openLoopState(prior.state()), openLoopID);
  if (prior.state() != scheduled) {
    return;
  }
  if (const auto detectedAt = openLoopDetectedAt(connection, openLoopID)) {
    internal::projectCandidate(connection, {.personID = prior.personID(),
                                            .openLoopID = openLoopID,
                                            .detectedAt = *detectedAt,
                                            .dueAt = prior.dueAt(),
                                            .createdAt = *detectedAt});
  }
}

} // namespace

std::optional<PersistedFollowUp> FollowUpRecords::load(Connection& connection, const std::string& followUpID) {
  return loadFollowUp(connection, followUpID);
}

std::vector<PersistedFollowUp> FollowUpScheduler::rows(Connection& connection,
                                                       const std::string& sourceObjectID) const {
  return internal::scheduledFollowUps(connection, sourceObjectID);
}

std::optional<PersistedFollowUp> FollowUpRecords::upsert(Connection& connection, const std::string& followUpID,
                                                         const std::string& sourceObjectID, const std::string& personID,
                                                         Instant dueAt, const Uuid& operationID, Instant now) {
  auto prior = loadFollowUp(connection, followUpID);
  if (prior.has_value()) {
    requireScope(*prior, sourceObjectID, personID);
  }
  const std::string nowText = ActionEffectStore::stamp(now);
  const std::string dueText = ActionEffectStore::stamp(dueAt);
  const std::string loopID = storedOpenLoopID(connection, followUpID);
  insertFollowUp(connection, {.id = followUpID,
                              .sourceObjectID = sourceObjectID,
                              .personID = personID,
                              .dueAt = dueText,
                              .now = nowText,
                              .operationID = operationID.text(),
                              .openLoopID = loopID});
  const std::string detectedAt = openLoopDetectedAt(connection, loopID).value_or(nowText);
  insertOpenLoop(connection, loopID, personID, detectedAt, nowText);
  internal::projectCandidate(
      connection,
      {.personID = personID, .openLoopID = loopID, .detectedAt = detectedAt, .dueAt = dueText, .createdAt = nowText});
  return prior;
}

std::optional<PersistedFollowUp> FollowUpScheduler::upsert(Connection& connection, const std::string& sourceObjectID,
                                                           const std::string& personID, Instant dueAt,
                                                           const Uuid& operationID, Instant now) const {
  auto existing = loadFollowUp(connection, sourceObjectID, personID);
  const bool hasID = existing.has_value() && !existing->id().empty();
  upsert(connection, hasID ? existing->id() : operationID.text(), sourceObjectID, personID, dueAt, operationID, now);
  return existing;
}

std::optional<PersistedFollowUp> FollowUpRecords::complete(Connection& connection, const std::string& followUpID,
                                                           Instant now) {
  auto prior = ifScheduled(loadFollowUp(connection, followUpID));
  if (prior.has_value()) {
    connection.execute("UPDATE follow_up SET state = 'completed', completed_at = ? WHERE id = ?",
                       ActionEffectStore::stamp(now), followUpID);
    connection.execute("UPDATE open_loop SET state = 'done' WHERE id = ?", storedOpenLoopID(connection, followUpID));
  }
  return prior;
}

std::optional<PersistedFollowUp> FollowUpScheduler::complete(Connection& connection, const std::string& sourceObjectID,
                                                             const std::string& personID, Instant now) const {
  const auto row = ifScheduled(loadFollowUp(connection, sourceObjectID, personID));
  return row.has_value() ? complete(connection, row->id(), now) : std::nullopt;
}

std::optional<PersistedFollowUp> FollowUpRecords::cancel(Connection& connection, const std::string& followUpID) {
  auto prior = ifScheduled(loadFollowUp(connection, followUpID));
  if (prior.has_value()) {
    retire(connection, followUpID);
  }
  return prior;
}

bool FollowUpRecords::reopen(Connection& connection, const std::string& followUpID) {
  const auto row = loadFollowUp(connection, followUpID);
  if (!row.has_value() || row->state() != completed) {
    return false;
  }
  connection.execute("UPDATE follow_up SET state = 'scheduled', completed_at = NULL WHERE id = ?", followUpID);
  connection.execute("UPDATE open_loop SET state = 'open' WHERE id = ?", storedOpenLoopID(connection, followUpID));
  FollowUpScheduler::reprojectCandidatesCore(connection, row->personID());
  return true;
}

std::optional<PersistedFollowUp> FollowUpScheduler::upsert(Connection& connection, const std::string& followUpID,
                                                           const std::string& sourceObjectID,
                                                           const std::string& personID, Instant dueAt,
                                                           const Uuid& operationID, Instant now) const {
  return FollowUpRecords::upsert(connection, followUpID, sourceObjectID, personID, dueAt, operationID, now);
}

std::optional<PersistedFollowUp> FollowUpScheduler::complete(Connection& connection, const std::string& followUpID,
                                                             Instant now) const {
  return FollowUpRecords::complete(connection, followUpID, now);
}

std::optional<PersistedFollowUp> FollowUpScheduler::cancel(Connection& connection,
                                                           const std::string& followUpID) const {
  return FollowUpRecords::cancel(connection, followUpID);
}

bool FollowUpScheduler::reopen(Connection& connection, const std::string& followUpID) const {
  return FollowUpRecords::reopen(connection, followUpID);
}

void FollowUpScheduler::restore(Connection& connection, const std::string& followUpID,
                                const std::optional<PersistedFollowUp>& prior) const {
  if (prior.has_value()) {
    restoreTo(connection, followUpID, *prior);
  } else {
    restoreToNothing(connection, followUpID);
  }
}

void FollowUpScheduler::restore(Connection& connection, const std::string& sourceObjectID, const std::string& personID,
                                const std::optional<PersistedFollowUp>& prior) const {
  const auto current = loadFollowUp(connection, sourceObjectID, personID);
  if (current.has_value()) {
    restore(connection, current->id(), prior);
  }
}

void FollowUpScheduler::reprojectCandidates(Connection& connection, const std::string& personID) const {
  reprojectCandidatesCore(connection, personID);
}

std::optional<EffectReasonToken> FollowUpScheduler::refusal(Connection& connection, const std::string& followUpID,
                                                            const std::string& sourceObjectID,
                                                            const std::string& personID) const {
  const auto row = loadFollowUp(connection, followUpID);
  if (!row.has_value()) {
    return std::nullopt;
  }
  const bool mayWrite =
      row->sourceObjectID() == sourceObjectID && row->personID() == personID && row->state() == scheduled;
  return mayWrite ? std::nullopt : std::optional{token(FollowUpRefusal::unknownFollowUp)};
}

} // namespace orvan
