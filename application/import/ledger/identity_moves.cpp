#include "application/import/ledger/identity_moves.h"

#include <cstddef>
#include <optional>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

std::vector<std::string> firstTexts(Query rows) {
  std::vector<std::string> texts;
  while (rows.next()) {
    texts.emplace_back(rows.text(Column{0}));
  }
  return texts;
}

struct LiveMembership {
  std::string id;
  std::string personID;
};

std::optional<LiveMembership> liveMembership(std::string_view identityID, Connection& connection) {
  auto rows = connection.query(R"sql(
SELECT id, canonical_person_id
FROM identity_membership
WHERE source_identity_id = ? AND ended_at IS NULL AND state IN ('high_conf', 'confirmed')
)sql",
                               identityID);
  return rows.next()
             ? std::optional{LiveMembership{std::string{rows.text(Column{0})}, std::string{rows.text(Column{1})}}}
             : std::nullopt;
}

/// The first membership of an identity has the identity's id, the next ones count on from there.
std::string nextMembershipID(std::string_view identityID, Connection& connection) {
  for (std::size_t number = 2;; ++number) {
    auto id = std::string{identityID} + "-" + std::to_string(number);
    if (!connection.fetchOptionalInteger("SELECT 1 FROM identity_membership WHERE id = ?", id)) {
      return id;
    }
  }
}

void endMembership(std::string_view membershipID, std::string_view now, Connection& connection) {
  connection.execute("UPDATE identity_membership SET ended_at = ? WHERE id = ?", now, membershipID);
}

std::string beginMembership(std::string_view identityID, std::string_view personID, Connection& connection) {
  auto id = nextMembershipID(identityID, connection);
  connection.execute(R"sql(
INSERT INTO identity_membership (id, source_identity_id, canonical_person_id, state, ended_at)
VALUES (?, ?, ?, 'confirmed', NULL)
)sql",
                     id, identityID, personID);
  return id;
}

std::vector<std::string> claimsOnMailsOf(std::string_view writerPersonID, std::string_view personID,
                                         Connection& connection) {
  return firstTexts(connection.query(R"sql(
SELECT DISTINCT c.id
FROM claim c
JOIN claim_evidence ce ON ce.claim_id = c.id
JOIN interaction mail ON mail.source_event_id = ce.source_event_id
JOIN identity_membership writer ON writer.source_identity_id = mail.source_identity_id
  AND writer.ended_at IS NULL AND writer.state IN ('high_conf', 'confirmed')
WHERE c.person_id = ? AND writer.canonical_person_id = ?
)sql",
                                     personID, writerPersonID));
}

std::vector<std::string> openLoopsOnMailsOf(std::string_view writerPersonID, std::string_view personID,
                                            Connection& connection) {
  return firstTexts(connection.query(R"sql(
SELECT DISTINCT ol.id
FROM open_loop ol
JOIN claim_evidence ce ON ce.id = ol.evidence_ref
JOIN interaction mail ON mail.source_event_id = ce.source_event_id
JOIN identity_membership writer ON writer.source_identity_id = mail.source_identity_id
  AND writer.ended_at IS NULL AND writer.state IN ('high_conf', 'confirmed')
WHERE ol.person_id = ? AND writer.canonical_person_id = ?
)sql",
                                     personID, writerPersonID));
}

void giveClaim(std::string_view claimID, std::string_view personID, Connection& connection) {
  connection.execute("UPDATE claim SET person_id = ? WHERE id = ?", personID, claimID);
}

void giveOpenLoop(std::string_view openLoopID, std::string_view personID, Connection& connection) {
  connection.execute("UPDATE open_loop SET person_id = ? WHERE id = ?", personID, openLoopID);
}

/// A person's follow-up about an object is the newest one, so one that is moved must not hide another.
std::vector<std::string> followUpsFreeToMove(std::string_view fromPersonID, std::string_view toPersonID,
                                             Connection& connection) {
  return firstTexts(connection.query(R"sql(
SELECT f.id
FROM follow_up f
WHERE f.person_id = ?1
  AND NOT EXISTS (
    SELECT 1 FROM follow_up theirs
    WHERE theirs.source_object_id = f.source_object_id AND theirs.person_id = ?2
      AND (theirs.state = 'scheduled' OR (theirs.created_at, theirs.id) > (f.created_at, f.id)))
ORDER BY f.id
)sql",
                                     fromPersonID, toPersonID));
}

/// The loop keeps the id that the row knows it by. The candidate is made anew under the other person's key.
void giveFollowUp(const std::string& followUpID, std::string_view personID, Connection& connection) {
  connection.execute("UPDATE follow_up SET person_id = ? WHERE id = ?", personID, followUpID);
  auto openLoopID = connection.fetchOptionalText("SELECT open_loop_id FROM follow_up WHERE id = ?", followUpID);
  if (!openLoopID) {
    openLoopID = FollowUpScheduler::openLoopID(followUpID);
  }
  giveOpenLoop(*openLoopID, personID, connection);
  FollowUpScheduler::retractCandidate(connection, *openLoopID);
}

void giveFollowUps(const std::vector<std::string>& followUpIDs, std::string_view personID, Connection& connection) {
  for (const auto& followUpID : followUpIDs) {
    giveFollowUp(followUpID, personID, connection);
  }
  if (!followUpIDs.empty()) {
    FollowUpScheduler::reprojectCandidatesCore(connection, std::string{personID});
  }
}

std::vector<std::string> decidedKeys(std::string_view personID, Connection& connection) {
  return firstTexts(
      connection.query("SELECT candidate_key FROM relationship_attention_disposition WHERE person_id = ?", personID));
}

/// Those that rest on an identity which `toPersonID` has by now, with its claims and loops.
std::vector<std::string> decidedKeysRestingOn(std::string_view identityID, std::string_view fromPersonID,
                                              std::string_view toPersonID, Connection& connection) {
  return firstTexts(connection.query(R"sql(
SELECT DISTINCT d.candidate_key
FROM relationship_attention_disposition d
JOIN relationship_attention_candidate_evidence e ON e.candidate_key = d.candidate_key
WHERE d.person_id = ?1
  AND (EXISTS (SELECT 1 FROM thread_participant p
               WHERE p.source_identity_id = ?3 AND p.thread_id = e.reference_id AND e.reference_kind = 'thread')
    OR EXISTS (SELECT 1 FROM interaction_participant p
               WHERE p.source_identity_id = ?3 AND p.interaction_id = e.reference_id
                 AND e.reference_kind IN ('interaction', 'source_event'))
    OR EXISTS (SELECT 1 FROM open_loop ol
               WHERE ol.id = e.reference_id AND ol.person_id = ?2 AND e.reference_kind = 'open_loop'))
)sql",
                                     fromPersonID, toPersonID, identityID));
}

/// Whether there was nothing in the way.
bool copyDecision(std::string_view itemKey, std::string_view copiedKey, std::string_view personID,
                  Connection& connection) {
  connection.execute(R"sql(
INSERT OR IGNORE INTO relationship_attention_candidate
  (candidate_key, person_id, kind, why_now_code, defining_event_at, due_at, expires_at, generator_version, created_at)
SELECT ?2, ?3, kind, why_now_code, defining_event_at, due_at, expires_at, generator_version, created_at
FROM relationship_attention_candidate
WHERE candidate_key = ?1
)sql",
                     itemKey, copiedKey, personID);
  connection.execute(R"sql(
INSERT OR IGNORE INTO relationship_attention_candidate_evidence (candidate_key, reference_kind, reference_id)
SELECT ?2, reference_kind, reference_id
FROM relationship_attention_candidate_evidence
WHERE candidate_key = ?1
)sql",
                     itemKey, copiedKey);
  connection.execute(R"sql(
INSERT OR IGNORE INTO relationship_attention_disposition
  (candidate_key, person_id, state, snoozed_until, created_at, updated_at)
SELECT ?2, ?3, state, snoozed_until, created_at, updated_at
FROM relationship_attention_disposition
WHERE candidate_key = ?1
)sql",
                     itemKey, copiedKey, personID);
  return connection.changes() > 0;
}

void copyDecisions(const std::vector<std::string>& itemKeys, PersonMoves& moves, Connection& connection) {
  for (const auto& itemKey : itemKeys) {
    auto copiedKey = AttentionCatchUpItem::itemKeyFor(moves.toPersonID, itemKey, moves.fromPersonID);
    if (copiedKey && copyDecision(itemKey, *copiedKey, moves.toPersonID, connection)) {
      moves.itemKeys.push_back(*std::move(copiedKey));
    }
  }
}

void giveIdentity(std::string_view identityID, const LiveMembership& membership, std::string_view now,
                  PersonMoves& moves, Connection& connection) {
  endMembership(membership.id, now, connection);
  moves.identities.push_back(
      {std::string{identityID}, membership.id, beginMembership(identityID, moves.toPersonID, connection)});
}

/// Once the identities are moved.
void giveWhatRestsOnMails(PersonMoves& moves, Connection& connection) {
  moves.claimIDs = claimsOnMailsOf(moves.toPersonID, moves.fromPersonID, connection);
  for (const auto& claimID : moves.claimIDs) {
    giveClaim(claimID, moves.toPersonID, connection);
  }
  moves.openLoopIDs = openLoopsOnMailsOf(moves.toPersonID, moves.fromPersonID, connection);
  for (const auto& openLoopID : moves.openLoopIDs) {
    giveOpenLoop(openLoopID, moves.toPersonID, connection);
  }
}

PersonMoves movesBetween(std::string_view fromPersonID, std::string_view toPersonID) {
  PersonMoves moves;
  moves.fromPersonID = fromPersonID;
  moves.toPersonID = toPersonID;
  return moves;
}

bool wasTakenFrom(std::string_view fromID, std::string_view personID, Connection& connection) {
  return connection
      .fetchOptionalInteger(R"sql(
SELECT 1
FROM identity_membership past
JOIN identity_membership live ON live.source_identity_id = past.source_identity_id AND live.ended_at IS NULL
WHERE past.canonical_person_id = ? AND past.ended_at IS NOT NULL AND live.canonical_person_id = ?
)sql",
                            fromID, personID)
      .has_value();
}

} // namespace

PersonMoves moveIdentity(std::string_view identityID, std::string_view toPersonID, std::string_view now,
                         Connection& connection) {
  const auto membership = liveMembership(identityID, connection);
  auto moves = movesBetween(membership ? membership->personID : std::string{}, toPersonID);
  if (!membership || membership->personID == toPersonID) {
    return moves;
  }
  giveIdentity(identityID, *membership, now, moves, connection);
  giveWhatRestsOnMails(moves, connection);
  copyDecisions(decidedKeysRestingOn(identityID, moves.fromPersonID, toPersonID, connection), moves, connection);
  return moves;
}

PersonMoves mergePeople(std::string_view fromPersonID, std::string_view toPersonID, std::string_view now,
                        Connection& connection) {
  auto moves = movesBetween(fromPersonID, toPersonID);
  if (fromPersonID == toPersonID) {
    return moves;
  }
  for (const auto& identityID : identitiesOf(fromPersonID, connection)) {
    if (const auto membership = liveMembership(identityID, connection)) {
      giveIdentity(identityID, *membership, now, moves, connection);
    }
  }
  giveWhatRestsOnMails(moves, connection);
  moves.followUpIDs = followUpsFreeToMove(fromPersonID, toPersonID, connection);
  giveFollowUps(moves.followUpIDs, toPersonID, connection);
  copyDecisions(decidedKeys(fromPersonID, connection), moves, connection);
  return moves;
}

void giveWhatRestsOnMails(std::string_view fromPersonID, std::string_view toPersonID, Connection& connection) {
  auto moves = movesBetween(fromPersonID, toPersonID);
  giveWhatRestsOnMails(moves, connection);
}

std::string personIDForItself(std::string_view identityID, Connection& connection) {
  const auto firstID = personIDOf(identityID);
  auto personID = firstID;
  for (std::size_t number = 2; !identitiesOf(personID, connection).empty(); ++number) {
    personID = firstID + "-" + std::to_string(number);
  }
  return personID;
}

void makePersonFor(std::string_view identityID, std::string_view personID, std::string_view now,
                   Connection& connection) {
  connection.execute(R"sql(
INSERT INTO person (id, display_name, created_at)
SELECT ?1, display_name, ?3
FROM source_identity
WHERE id = ?2
ON CONFLICT(id) DO UPDATE SET display_name = excluded.display_name
)sql",
                     personID, identityID, now);
}

bool werePartedFromEachOther(std::string_view personID, std::string_view otherID, Connection& connection) {
  return wasTakenFrom(otherID, personID, connection) || wasTakenFrom(personID, otherID, connection);
}

std::vector<std::string> identitiesOf(std::string_view personID, Connection& connection) {
  return firstTexts(connection.query(R"sql(
SELECT source_identity_id
FROM identity_membership
WHERE canonical_person_id = ? AND ended_at IS NULL AND state IN ('high_conf', 'confirmed')
ORDER BY source_identity_id
)sql",
                                     personID));
}

} // namespace orvan
