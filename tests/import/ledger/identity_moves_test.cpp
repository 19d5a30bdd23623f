#include "application/import/ledger/identity_moves.h"

#include "application/import/ledger/person_names.h"
#include "import_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* now = "2026-03-05T12:00:00Z";

std::string personOf(std::string_view address) {
  return personIDOf(identityIDOf(address));
}

/// Zoë asked something from each of two addresses, of which the user had written to both.
void importTwoQuestions(ImportStore& store) {
  store.import({{.id = "a", .at = "2026-02-01T10:00:00Z", .from = me, .to = {zoe}},
                {.id = "b", .at = "2026-02-01T11:00:00Z", .from = me, .to = {ben}},
                {.id = "c", .at = "2026-03-01T10:00:00Z", .question = "Shall we meet?"},
                {.id = "d", .at = "2026-03-02T10:00:00Z", .from = ben, .fromName = "Ben Out", .question = "And now?"}});
}

PersonMoves merge(ImportStore& store, std::string_view from, std::string_view to) {
  return store.queue.write([&](Connection& connection) {
    auto moves = mergePeople(personOf(from), personOf(to), now, connection);
    takeNameOfMerged(personOf(to), personOf(from), connection);
    return moves;
  });
}

TEST(IdentityMoves, MakeTwoPeopleOneWithAllThatRestsOnTheirMails) {
  ImportStore store;
  importTwoQuestions(store);
  const auto moves = merge(store, ben, zoe);
  EXPECT_THAT(store.commitments(zoe), ElementsAre("unanswered_question", "unanswered_question"));
  EXPECT_THAT(store.commitments(ben), IsEmpty());
  EXPECT_THAT(store.people(), ElementsAre("Ben Out")) << "an address is no name";
  ASSERT_EQ(moves.identities.size(), 1U);
  EXPECT_THAT(store.texts("SELECT id FROM identity_membership WHERE ended_at IS NULL"),
              UnorderedElementsAre(identityIDOf(zoe), identityIDOf(ben) + "-2"));

  // Later mail: another name changes nothing that is as good, and a new question is the one person's.
  store.import({{.id = "e", .at = "2026-03-03T10:00:00Z", .from = ben, .fromName = "B. O.", .question = "Really?"},
                {.id = "f", .at = "2026-03-03T11:00:00Z", .fromName = "Zoë Marsh"}});
  EXPECT_THAT(store.people(), ElementsAre("Ben Out"));
  EXPECT_EQ(store.commitments(zoe).size(), 3U);

  store.queue.write([&](Connection& connection) {
    const auto own = personIDForItself(identityIDOf(ben), connection);
    EXPECT_EQ(own, personOf(ben));
    makePersonFor(identityIDOf(ben), own, now, connection);
    moveIdentity(identityIDOf(ben), own, now, connection);
    nameAfterThoseThatStayed(personOf(zoe), identityIDOf(ben), connection);
    renamePerson(personOf(ben), "Benedict", connection);
  });
  EXPECT_EQ(store.commitments(zoe).size(), 1U);
  EXPECT_EQ(store.commitments(ben).size(), 2U);
  store.import({{.id = "g", .at = "2026-03-04T10:00:00Z", .from = "new@out.example", .fromName = "New"}});
  EXPECT_THAT(store.people(), UnorderedElementsAre("Zoë Marsh", "Benedict", "New"));
}

TEST(IdentityMoves, KeepWhatWasDecidedAndLeaveWhatIsInTheWay) {
  ImportStore store;
  importTwoQuestions(store);
  const auto thread = store.texts("SELECT thread_id FROM interaction WHERE direction = 'inbound' ORDER BY occurred_at");
  const auto item = [&](std::string_view person, std::size_t number) {
    const auto key = personOf(person);
    return std::to_string(key.size()) + ":" + key + "|10:openThread|thread " + thread.at(number);
  };
  store.queue.write([&](Connection& connection) {
    const auto decide = [&](const std::string& key, std::string_view person, std::string_view state, std::size_t on) {
      connection.execute(
          "INSERT INTO relationship_attention_candidate VALUES (?, ?, 'k', 'w', ?3, NULL, NULL, 'g', ?3)", key,
          personOf(person), now);
      connection.execute("INSERT INTO relationship_attention_candidate_evidence VALUES (?, 'thread', ?)", key,
                         thread.at(on));
      connection.execute("INSERT INTO relationship_attention_disposition VALUES (?, ?, ?, NULL, ?4, ?4)", key,
                         personOf(person), state, now);
    };
    decide(item(ben, 1), ben, "dismissed", 1);
    decide(item(ben, 0), ben, "dismissed", 0);
    decide(item(zoe, 0), zoe, "snoozed", 0);
    for (const auto* row : {"('f1', 'o1', ?1, ?2, 'scheduled', ?2, NULL, NULL, 'l1')",
                            "('f2', 'o2', ?1, ?2, 'scheduled', ?2, NULL, NULL, 'l2')"}) {
      connection.execute(std::string{"INSERT INTO follow_up VALUES "} + row, personOf(ben), now);
    }
    connection.execute("INSERT INTO open_loop VALUES ('l1', ?1, 'scheduled_followup', NULL, ?2, 'open', ?2)",
                       personOf(ben), now);
    connection.execute("INSERT INTO follow_up VALUES ('f3', 'o2', ?1, ?2, 'scheduled', ?2, NULL, NULL, 'l3')",
                       personOf(zoe), now);
  });

  const auto moves = merge(store, ben, zoe);
  EXPECT_THAT(moves.itemKeys, ElementsAre(item(zoe, 1)));
  EXPECT_THAT(store.texts("SELECT state FROM relationship_attention_disposition ORDER BY candidate_key, state"),
              UnorderedElementsAre("dismissed", "dismissed", "dismissed", "snoozed"));
  EXPECT_THAT(moves.followUpIDs, ElementsAre("f1"));
  EXPECT_THAT(store.texts("SELECT person_id FROM relationship_attention_candidate WHERE kind = 'unresolved_followup'"),
              ElementsAre(personOf(zoe)));
}

} // namespace
} // namespace orvan
