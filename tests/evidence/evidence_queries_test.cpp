#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"

#include <gmock/gmock.h>

#include <functional>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/store_error.h"
#include "tests/support/test_store.h"

namespace orvan::internal {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::vector<std::string>;

class EvidenceQueriesTest : public testing::Test {
 protected:
  EvidenceQueriesTest() { store.addPerson("ana"); }

  static EvidenceQueries asShipped() { return EvidenceQueries{AttentionEvidenceCompilerOptions::defaults}; }
  static EvidenceQueries limitedTo(std::int64_t rows) {
    return EvidenceQueries{{14, 21, 30, rows, rows, rows, 5, 200}};
  }

  template <typename Evidence, typename ID>
  static Texts idsOf(const std::vector<Evidence>& all, ID id) {
    Texts ids;
    for (const auto& evidence : all) {
      ids.push_back(std::invoke(id, evidence));
    }
    return ids;
  }

  Texts openThreads(const char* person = "ana", const EvidenceQueries& queries = asShipped()) {
    return idsOf(queries.fetchOpenThreads(person, asOf, connection), &OpenThreadEvidence::lastInboundInteractionID);
  }
  Texts meetings(const EvidenceQueries& queries = asShipped()) {
    const auto found = queries.fetchUpcomingInteractions("ana", asOf, connection);
    return idsOf(found, &UpcomingInteractionEvidence::interactionID);
  }
  Texts commitments(const char* person = "ana", const EvidenceQueries& queries = asShipped()) {
    return idsOf(queries.fetchCommitments(person, connection), &CommitmentEvidence::openLoopID);
  }
  Texts history() {
    return idsOf(EvidenceQueries::fetchInteractionTimestamps("ana", connection),
                 &ChangedContextDetector::TimestampedInteraction::interactionID);
  }
  std::size_t historyLength() { return history().size(); }
  std::vector<SourceFreshnessEvidence> freshness() { return EvidenceQueries::fetchSourceFreshness("ana", connection); }

  /// How many corrections lie in the window, and the time of the last.
  std::pair<std::int64_t, std::optional<std::string>> corrections() {
    const auto found = asShipped().fetchUserCorrections("ana", asOf, connection);
    return {found.countInWindow, found.lastAt};
  }

  void addMeeting(const char* id, const char* at, const char* kind = "meeting") {
    store.add(TestInteraction{.id = id, .at = at, .direction = "mutual", .kind = kind});
  }

  void correct(const char* target, const char* id, const char* at) {
    store.run("INSERT INTO user_correction VALUES (?, ?, ?, ?)", std::string{target} + at, target, id, at);
  }

  /// Makes the table anew without constraints, as a damaged or foreign store may have it.
  void loosen(const std::string& table) {
    store.run("CREATE TABLE loosened AS SELECT * FROM " + table);
    store.run("DROP TABLE " + table);
    store.run("ALTER TABLE loosened RENAME TO " + table);
  }

  const Instant asOf = *parseInternetDateTime("2026-03-05T12:00:00Z");
  TestStore store;
  Connection& connection = store.connection();
};

using OpenThreads = EvidenceQueriesTest;
using UpcomingInteractions = EvidenceQueriesTest;
using Commitments = EvidenceQueriesTest;
using UserCorrections = EvidenceQueriesTest;
using SourceFreshness = EvidenceQueriesTest;
using DamagedRows = EvidenceQueriesTest;

TEST_F(OpenThreads, AreThoseWhoseLastMessageByTheMomentOfEvaluationIsThePersons) {
  const auto* const first = "2026-03-01T10:00:00Z";
  const auto* const second = "2026-03-02T10:00:00Z";
  const auto* const later = "2026-03-05T12:00:01Z";
  store.add(TestInteraction{.id = "unanswered", .at = second, .thread = "1"});
  store.add(TestInteraction{.id = "question", .at = first, .thread = "2"});
  store.add(TestInteraction{.id = "answer", .at = second, .thread = "2", .direction = "outbound"});
  store.add(TestInteraction{.id = "earlier", .at = first, .thread = "3"});
  store.add(TestInteraction{.id = "answer to come", .at = later, .thread = "3", .direction = "outbound"});
  store.add(TestInteraction{.id = "to a group", .at = first, .thread = "4", .conversation = "group"});
  store.add(TestInteraction{.id = "by a machine", .at = first, .thread = "5", .direction = "automated"});
  store.add(TestInteraction{.id = "to come", .at = later, .thread = "6"});
  store.add(TestInteraction{.id = "twin a", .at = first, .thread = "7"});
  store.add(TestInteraction{.id = "twin b", .at = first, .thread = "7"});
  EXPECT_THAT(openThreads(), ElementsAre("unanswered", "earlier", "twin a", "twin b"));
}

TEST_F(OpenThreads, NeedAMessageOfThePersonThatMayBeShownButCloseWithAnyAnswer) {
  store.addPerson("bo");
  store.add(TestInteraction{.id = "from ana", .at = "2026-03-01T10:00:00Z"});
  store.run("INSERT INTO thread_participant VALUES ('bo-identity', 'thread')");
  EXPECT_THAT(openThreads("bo"), IsEmpty());
  EXPECT_THAT(openThreads("ana"), ElementsAre("from ana"));
  store.run("INSERT INTO exclusion_rule VALUES ('r', 'person', 'ana', '', NULL)");
  EXPECT_THAT(openThreads("ana"), IsEmpty());
  store.run("DELETE FROM exclusion_rule");
  store.add(TestInteraction{.id = "answer", .at = "2026-03-02T10:00:00Z", .direction = "outbound"});
  store.run("INSERT INTO deletion_tombstone VALUES ('answer', 'interaction', '')");
  EXPECT_THAT(openThreads("ana"), IsEmpty());
}

TEST_F(EvidenceQueriesTest, CountAnIdentityWhileItsMembershipIsLive) {
  store.add(TestInteraction{.id = "i", .at = "2026-03-01T10:00:00Z"});
  store.add(TestInteraction{
      .id = "m", .at = "2026-03-06T12:00:00Z", .thread = "other", .direction = "mutual", .kind = "meeting"});
  store.run("INSERT INTO source_progress_projection VALUES ('mail', 'sync', 'current', NULL)");
  for (const auto& [membership, messages] : {std::pair{"state = 'confirmed'", 1U},
                                             {"state = 'high_conf'", 1U},
                                             {"state = 'low_conf'", 0U},
                                             {"state = 'rejected'", 0U},
                                             {"state = 'confirmed', ended_at = '2026-01-01T00:00:00Z'", 0U}}) {
    store.run(std::string{"UPDATE identity_membership SET "} + membership);
    EXPECT_EQ(openThreads().size(), messages) << membership;
    EXPECT_EQ(historyLength(), 2 * messages) << membership;
    EXPECT_EQ(meetings().size(), messages) << membership;
    EXPECT_EQ(freshness().size(), messages) << membership;
  }
}

TEST_F(OpenThreads, NewestComeFirstUpToTheLimit) {
  for (const auto& [id, day] :
       {std::pair{"c", "03-01"}, {"b", "03-01"}, {"d", "03-04"}, {"a", "02-01"}, {"f", "03-03"}, {"e", "03-02"}}) {
    const auto at = "2026-" + std::string{day} + "T10:00:00Z";
    store.add(TestInteraction{.id = id, .at = at, .thread = id});
  }
  EXPECT_THAT(openThreads(), ElementsAre("d", "f", "e", "b", "c"));
  EXPECT_THAT(openThreads("ana", limitedTo(-1)), ElementsAre("d", "f", "e", "b", "c", "a"));
  EXPECT_THAT(openThreads("ana", limitedTo(0)), IsEmpty());
}

TEST_F(UpcomingInteractions, LieAfterTheMomentOfEvaluationUpToTheEndOfTheWindow) {
  addMeeting("now", "2026-03-05T12:00:00Z");
  addMeeting("soon", "2026-03-05T12:00:01Z");
  addMeeting("at the end", "2026-03-19T12:00:00Z");
  addMeeting("too late", "2026-03-19T12:00:01Z");
  addMeeting("message", "2026-03-06T12:00:00Z", "message");
  addMeeting("b", "2026-03-07T12:00:00Z");
  addMeeting("a", "2026-03-07T12:00:00Z");
  EXPECT_THAT(meetings(), ElementsAre("soon", "a", "b", "at the end"));
  EXPECT_THAT(meetings(limitedTo(2)), ElementsAre("soon", "a"));
  store.run("INSERT INTO exclusion_rule VALUES ('r', 'interaction', 'a', '', NULL)");
  EXPECT_THAT(meetings(limitedTo(2)), ElementsAre("soon", "b"));
}

TEST_F(UpcomingInteractions, AreListedOnceForAPersonWithTwoIdentities) {
  addMeeting("b", "2026-03-06T12:00:00Z");
  store.run("INSERT INTO identity_membership VALUES ('second', 'other', 'ana', 'high_conf', NULL)");
  store.run("INSERT INTO interaction_participant VALUES ('other', 'b')");
  EXPECT_THAT(meetings(), ElementsAre("b"));
  EXPECT_EQ(historyLength(), 1U);
  store.run("DELETE FROM interaction_participant WHERE source_identity_id = 'other'");
  addMeeting("a", "2026-03-06T12:00:00Z");
  store.run("UPDATE interaction_participant SET source_identity_id = 'other' WHERE interaction_id = 'a'");
  EXPECT_THAT(history(), ElementsAre("a", "b")) << "of one time in the order of their ids, not of the identities";
}

TEST_F(Commitments, AreOpenLoopsThatRestOnEvidenceAboutThePerson) {
  const auto* const at = "2026-03-01T10:00:00Z";
  for (const char* state : {"open", "surfaced", "done", "dismissed"}) {
    store.add(TestOpenLoop{.id = state, .at = at, .state = state});
  }
  store.add(TestOpenLoop{.id = "newer", .at = "2026-03-02T10:00:00Z"});
  store.add(TestOpenLoop{.id = "to come", .at = "2026-04-01T10:00:00Z"});
  store.add(TestOpenLoop{.id = "without evidence", .at = at});
  store.run("UPDATE open_loop SET evidence_ref = NULL WHERE id = 'without evidence'");
  store.add(TestOpenLoop{.id = "about another", .at = at});
  store.run("UPDATE claim SET person_id = 'bo' WHERE id = 'claim-about another'");
  EXPECT_THAT(commitments(), ElementsAre("to come", "newer", "open", "surfaced"));
  EXPECT_THAT(commitments("ana", limitedTo(2)), ElementsAre("to come", "newer"));
  EXPECT_THAT(commitments("bo"), IsEmpty());
}

TEST_F(Commitments, AreHiddenWithTheThreadOfTheirEvidencesFirstInteraction) {
  store.add(TestInteraction{.id = "b", .at = "2026-03-01T10:00:00Z", .thread = "second"});
  store.add(TestInteraction{.id = "a", .at = "2026-03-01T10:00:00Z", .thread = "first"});
  store.run("UPDATE interaction SET source_event_id = 'shared'");
  store.add(TestOpenLoop{.id = "ol", .at = "2026-03-01T10:00:00Z", .event = "shared"});
  store.run("INSERT INTO deletion_tombstone VALUES ('second', 'thread', '')");
  EXPECT_THAT(commitments(), ElementsAre("ol"));
  store.run("INSERT INTO deletion_tombstone VALUES ('first', 'thread', '')");
  EXPECT_THAT(commitments(), IsEmpty());
}

TEST_F(UserCorrections, AreCountedFromTheStartOfTheWindowWithoutAnEnd) {
  using testing::Pair;
  EXPECT_THAT(corrections(), Pair(0, std::nullopt));
  correct("person", "ana", "2026-02-03T11:59:59Z");
  EXPECT_THAT(corrections(), Pair(0, "2026-02-03T11:59:59Z"));
  correct("person", "ana", "2026-02-03T12:00:00Z");
  EXPECT_THAT(corrections(), Pair(1, "2026-02-03T12:00:00Z"));
  correct("person", "ana", "2026-04-01T12:00:00Z");
  EXPECT_THAT(corrections(), Pair(2, "2026-04-01T12:00:00Z"));
}

TEST_F(UserCorrections, ConcernThePersonTheirClaimsAndTheirMemberships) {
  store.add(TestOpenLoop{.id = "ol", .at = "2026-03-01T10:00:00Z"});
  correct("person", "ana", "2026-03-01T12:00:00Z");
  correct("claim", "claim-ol", "2026-03-03T12:00:00Z");
  correct("identity_membership", "ana-membership", "2026-03-02T12:00:00Z");
  for (const auto& [target, id] : {std::pair{"person", "bo"}, {"claim", "ana"}, {"thread", "ana"}}) {
    correct(target, id, "2026-03-04T12:00:00Z");
  }
  EXPECT_THAT(corrections(), testing::Pair(3, "2026-03-03T12:00:00Z"));
}

TEST_F(SourceFreshness, IsThatOfTheAccountsThePersonIsSeenInByAccountAndOperation) {
  store.run(
      "INSERT INTO source_progress_projection VALUES ('mail', 'sync', 'current', '2026-03-05T11:00:00Z'),"
      " ('mail', 'backfill', 'paused', NULL), ('calendar', 'sync', 'stale', ''), ('elsewhere', 'sync', 'stale', '')");
  EXPECT_THAT(freshness(), IsEmpty());
  store.add(TestInteraction{.id = "i1", .at = "2026-03-01T10:00:00Z"});
  store.add(TestInteraction{.id = "i2", .at = "2026-03-01T10:00:00Z", .account = "calendar"});
  store.add(TestInteraction{.id = "i3", .at = "2026-03-01T10:00:00Z", .account = "unprojected"});
  using Freshness = SourceFreshnessEvidence;
  EXPECT_THAT(freshness(), ElementsAre(Freshness("calendar", "sync", "stale", ""),
                                       Freshness("mail", "backfill", "unknown", std::nullopt),
                                       Freshness("mail", "sync", "current", "2026-03-05T11:00:00Z")));
}

TEST_F(DamagedRows, AreTheOnlyOnesPassedOverAndAfterTheLimitWasApplied) {
  for (const char* id : {"1", "2"}) {
    store.add(TestInteraction{.id = id, .at = "2026-03-01T10:00:00Z", .thread = id});
    store.add(TestOpenLoop{.id = id, .at = "2026-03-01T10:00:00Z"});
    store.run("INSERT INTO source_progress_projection VALUES ('mail', ?, 'stale', '2026-03-01T10:00:00Z')", id);
    correct("person", "ana", id);
  }
  for (const char* table : {"thread", "open_loop", "source_progress_projection", "user_correction", "interaction"}) {
    loosen(table);
  }
  for (const std::string value : {"NULL", "x'00ff'"}) {
    SCOPED_TRACE(value);
    store.run("UPDATE thread SET source_type = " + value + " WHERE id = '1'");
    store.run("UPDATE open_loop SET kind = " + value + " WHERE id = '1'");
    store.run("UPDATE source_progress_projection SET freshness_state = " + value + " WHERE operation = '1'");
    store.run("UPDATE source_progress_projection SET last_successful_sync_at = " + value);
    store.run("UPDATE user_correction SET created_at = " + value + " WHERE id = 'person2'");
    EXPECT_THAT(openThreads(), ElementsAre("2"));
    EXPECT_THAT(openThreads("ana", limitedTo(1)), IsEmpty());
    EXPECT_THAT(commitments(), ElementsAre("2"));
    EXPECT_THAT(commitments("ana", limitedTo(1)), IsEmpty());
    EXPECT_THAT(freshness(), ElementsAre(SourceFreshnessEvidence("mail", "2", "stale", std::nullopt)));
    EXPECT_EQ(corrections().second, "1");
    store.run("UPDATE interaction SET occurred_at = " + value + " WHERE id = '1'");
    EXPECT_EQ(historyLength(), 1U);
    store.run("UPDATE interaction SET occurred_at = '2026-03-01T10:00:00Z'");
  }
}

TEST_F(DamagedRows, OfAccountsArePassedOverButNotAnAccountWithoutAnIdentifier) {
  store.add(TestInteraction{.id = "i", .at = "2026-03-01T10:00:00Z"});
  loosen("source_event");
  store.run("UPDATE source_event SET source_account_id = x'00ff'");
  EXPECT_THAT(freshness(), IsEmpty());
  store.run("UPDATE source_event SET source_account_id = NULL");
  EXPECT_EQ(faultOf([this] { return freshness(); }), StoreFault::columnIsNull);
}

TEST_F(DamagedRows, AreNotThoseWhoseTextIsOfOddBytes) {
  store.add(TestInteraction{.id = "i", .at = "2026-03-01T10:00:00Z"});
  store.run("UPDATE thread SET source_type = CAST(x'ff00fe' AS TEXT)");
  const auto threads = asShipped().fetchOpenThreads("ana", asOf, connection);
  EXPECT_EQ(threads.at(0).sourceType(), std::string("\xff\0\xfe", 3));
}

} // namespace
} // namespace orvan::internal
