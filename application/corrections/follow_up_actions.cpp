#include "application/corrections/follow_up_actions.h"

#include <nlohmann/json.hpp>
#include <utility>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/uuid.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_records.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "application/corrections/action_journal.h"

namespace orvan {
namespace {

/// What the journal and the attention item need of a follow-up's row.
struct StoredFollowUp {
  std::string personID;
  std::string openLoopID;
  std::string detectedAt;
  std::string said;
};

std::optional<StoredFollowUp> stored(const std::string& followUpID, Connection& connection) {
  auto rows = connection.query(R"sql(
SELECT f.person_id, loop.id, loop.detected_at,
       (SELECT json_extract(said.user_context, '$.user_follow_up')
        FROM capture_artifact said
        WHERE said.source_object_id = f.source_object_id AND json_valid(said.user_context)
        ORDER BY said.rowid LIMIT 1)
FROM follow_up f
JOIN open_loop loop ON loop.id = coalesce(f.open_loop_id, ?2)
WHERE f.id = ?1
)sql",
                               followUpID, FollowUpScheduler::openLoopID(followUpID));
  if (!rows.next()) {
    return std::nullopt;
  }
  return StoredFollowUp{std::string{rows.text(Column{0})}, std::string{rows.text(Column{1})},
                        std::string{rows.text(Column{2})}, std::string{rows.optionalText(Column{3}).value_or("")}};
}

std::optional<AttentionCatchUpItem> itemOf(const StoredFollowUp& followUp) {
  return FollowUpScheduler::attentionItem(followUp.personID, followUp.openLoopID, followUp.detectedAt);
}

std::string inWords(const std::string& done, const std::string& said) {
  return "follow-up " + done + (said.empty() ? "" : ": " + said);
}

/// The rows that every change of a follow-up concerns. Its candidate follows from them, so it is made right when they
/// are taken back.
void watchFollowUp(const std::string& followUpID, const std::string& openLoopID, ChangeRecorder& recorder) {
  recorder.watch(ChangedTable::followUp, {followUpID});
  recorder.watch(ChangedTable::openLoop, {openLoopID});
}

void captureWhatWasSaid(const std::string& objectID, const NewFollowUp& followUp, const std::string& now,
                        Connection& connection) {
  nlohmann::json context{{"user_follow_up", followUp.text}};
  if (followUp.interactionID) {
    context["interaction_id"] = *followUp.interactionID;
  }
  connection.execute("INSERT INTO source_object (id, kind, created_at) VALUES (?, 'follow_up', ?)", objectID, now);
  connection.execute("INSERT INTO capture_artifact (id, source_object_id, user_context) VALUES (?1, ?1, ?2)", objectID,
                     context.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

void note(UserActionKind kind, const StoredFollowUp& followUp, const std::string& done, const ChangeRecorder& recorder,
          Instant now, Connection& connection) {
  recordAction({kind, followUp.personID, inWords(done, followUp.said), recorder.changes()}, now, connection);
}

/// Marks the follow-up's matter as settled, as the user's decision about its item would.
void resolveItem(const StoredFollowUp& followUp, Instant now, ChangeRecorder& recorder, Connection& connection) {
  if (const auto item = itemOf(followUp)) {
    recorder.watch(ChangedTable::disposition, {item->itemKey()});
    AttentionDispositionStore::apply(*item, AttentionItemAction::resolve(), now, connection);
  }
}

/// What was decided about its item was decided about a matter that was settled.
void forgetDecision(const StoredFollowUp& followUp, ChangeRecorder& recorder, Connection& connection) {
  if (const auto item = itemOf(followUp)) {
    recorder.watch(ChangedTable::disposition, {item->itemKey()});
    connection.execute("DELETE FROM relationship_attention_disposition WHERE candidate_key = ?", item->itemKey());
  }
}

} // namespace

std::string addFollowUp(const NewFollowUp& followUp, Instant now, Connection& connection) {
  const auto operation = Uuid::random();
  const auto id = "follow-up:" + Uuid::random().text();
  ChangeRecorder recorder(connection);
  recorder.watch(ChangedTable::sourceObject, {id});
  recorder.watch(ChangedTable::captureArtifact, {id});
  watchFollowUp(id, FollowUpScheduler::openLoopID(id), recorder);
  captureWhatWasSaid(id, followUp, formatInternetDateTime(now), connection);
  FollowUpRecords::upsert(connection, id, id, followUp.personID, followUp.dueAt, operation, now);
  recordAction({UserActionKind::followUpAdd, followUp.personID,
                inWords("added for " + humanMomentText(followUp.dueAt), followUp.text), recorder.changes()},
               now, connection);
  return id;
}

bool completeFollowUp(const std::string& followUpID, Instant now, ChangeRecorder& recorder, Connection& connection) {
  const auto followUp = stored(followUpID, connection);
  if (!followUp) {
    return false;
  }
  watchFollowUp(followUpID, followUp->openLoopID, recorder);
  return FollowUpRecords::complete(connection, followUpID, now).has_value();
}

bool cancelFollowUp(const std::string& followUpID, ChangeRecorder& recorder, Connection& connection) {
  const auto followUp = stored(followUpID, connection);
  if (!followUp) {
    return false;
  }
  watchFollowUp(followUpID, followUp->openLoopID, recorder);
  return FollowUpRecords::cancel(connection, followUpID).has_value();
}

bool completeFollowUp(const std::string& followUpID, Instant now, Connection& connection) {
  ChangeRecorder recorder(connection);
  if (!completeFollowUp(followUpID, now, recorder, connection)) {
    return false;
  }
  const auto followUp = stored(followUpID, connection).value();
  resolveItem(followUp, now, recorder, connection);
  note(UserActionKind::followUpComplete, followUp, "completed", recorder, now, connection);
  return true;
}

bool cancelFollowUp(const std::string& followUpID, Instant now, Connection& connection) {
  ChangeRecorder recorder(connection);
  if (!cancelFollowUp(followUpID, recorder, connection)) {
    return false;
  }
  note(UserActionKind::followUpCancel, stored(followUpID, connection).value(), "cancelled", recorder, now, connection);
  return true;
}

bool reopenFollowUp(const std::string& followUpID, Instant now, Connection& connection) {
  ChangeRecorder recorder(connection);
  const auto followUp = stored(followUpID, connection);
  if (!followUp) {
    return false;
  }
  watchFollowUp(followUpID, followUp->openLoopID, recorder);
  if (!FollowUpRecords::reopen(connection, followUpID)) {
    return false;
  }
  forgetDecision(*followUp, recorder, connection);
  note(UserActionKind::followUpReopen, *followUp, "opened again", recorder, now, connection);
  return true;
}

} // namespace orvan
