#include "application/corrections/taking_back.h"

#include <set>
#include <span>
#include <string>
#include <utility>

#include "OrvanRelationshipAttention/follow_up/follow_up_records.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "application/corrections/waiting_again.h"
#include "application/import/ledger/identity_moves.h"

namespace orvan {
namespace {

/// A question that was answered while it counted as none is not asked again: only one that waits is pending.
void closeAnsweredQuestions(std::span<const Change> changes, Connection& connection) {
  for (const auto& change : changes) {
    if (change.table == ChangedTable::openLoop && change.before.contains("state")) {
      connection.execute(R"sql(
UPDATE open_loop SET state = 'done'
WHERE id = ?1 AND kind = 'unanswered_question' AND state IN ('open', 'surfaced')
  AND NOT EXISTS (
    SELECT 1
    FROM claim_evidence proof
    JOIN interaction mail ON mail.source_event_id = proof.source_event_id
    JOIN pending_question asked ON asked.interaction_id = mail.id
    WHERE proof.id = open_loop.evidence_ref)
)sql",
                         change.key.front());
    }
  }
}

/// A follow-up that is scheduled again has its candidate again, with its due time; one that was never made leaves none,
/// unless the user decided about it.
void projectFollowUpsAgain(std::span<const Change> changes, Connection& connection) {
  for (const auto& change : changes) {
    if (change.table != ChangedTable::followUp) {
      continue;
    }
    const auto followUp = FollowUpRecords::load(connection, change.key.front());
    if (!followUp) {
      FollowUpScheduler::retractCandidate(connection, FollowUpScheduler::openLoopID(change.key.front()));
    } else if (followUp->state() == "scheduled") {
      FollowUpScheduler::reprojectCandidatesCore(connection, followUp->personID());
    }
  }
}

/// Those whom identities went back from, and those whom they went back to.
struct Owners {
  std::set<std::string> from;
  std::set<std::string> to;
};

Owners ownersIn(std::span<const Change> changes, Connection& connection) {
  Owners owners;
  for (const auto& change : changes) {
    if (change.table != ChangedTable::identityMembership) {
      continue;
    }
    if (change.before.is_null()) {
      owners.from.insert(change.after.at("canonical_person_id").get<std::string>());
    } else if (const auto person = connection.fetchOptionalText(
                   "SELECT canonical_person_id FROM identity_membership WHERE id = ? AND ended_at IS NULL",
                   change.key.front())) {
      owners.to.insert(*person);
    }
  }
  return owners;
}

void giveBackWhatCameBetween(std::span<const Change> changes, Connection& connection) {
  const auto owners = ownersIn(changes, connection);
  for (const auto& from : owners.from) {
    for (const auto& to : owners.to) {
      if (from != to) {
        giveWhatRestsOnMails(from, to, connection);
      }
    }
  }
}

} // namespace

JournalEntry undoAction(std::optional<std::int64_t> number, Instant now, Connection& connection) {
  auto taken = takeBackAction(number, now, connection);
  waitAgainAsRulesSay(taken.changes, connection);
  closeAnsweredQuestions(taken.changes, connection);
  giveBackWhatCameBetween(taken.changes, connection);
  projectFollowUpsAgain(taken.changes, connection);
  return std::move(taken.entry);
}

} // namespace orvan
