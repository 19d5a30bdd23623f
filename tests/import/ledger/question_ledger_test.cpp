#include "import_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AskedQuestions : public testing::Test {
 protected:
  /// The user wrote to Zoe, who answered with a question.
  void askMe() {
    store.import({{.id = "mine", .at = "2026-03-01T10:00:00Z", .from = me, .to = {zoe}},
                  {.id = "asked", .at = "2026-03-02T10:00:00Z", .references = {"mine"}, .question = "Shall we meet?"}});
  }
  void answer() {
    store.import({{.id = "answer", .at = "2026-03-03T10:00:00Z", .from = me, .to = {zoe}, .references = {"asked"}}});
  }
  Texts states() { return store.texts("SELECT state FROM open_loop"); }

  ImportStore store;
};

TEST_F(AskedQuestions, AreCommitmentsUntilTheImportAfterTheAnswer) {
  askMe();
  EXPECT_THAT(store.commitments(), ElementsAre("unanswered_question"));
  EXPECT_THAT(store.texts("SELECT statement FROM claim_text "
                          "JOIN claim_evidence evidence ON evidence.claim_id = claim_text.claim_id "
                          "JOIN open_loop ON open_loop.evidence_ref = evidence.id "
                          "JOIN source_event ON source_event.id = evidence.source_event_id"),
              ElementsAre("Shall we meet?"));
  store.import({});
  EXPECT_THAT(states(), ElementsAre("open")) << "once, however often it is weighed";
  answer();
  EXPECT_THAT(store.commitments(), IsEmpty());
  askMe();
  EXPECT_THAT(states(), ElementsAre("done")) << "mail read again asks nothing new";
}

TEST_F(AskedQuestions, AnsweredByMailThatWasReadFirstAreNoCommitments) {
  answer();
  askMe();
  EXPECT_THAT(states(), IsEmpty());
}

TEST_F(AskedQuestions, StayAsTheUserLeftThem) {
  askMe();
  store.run("UPDATE open_loop SET state = 'dismissed'");
  askMe();
  answer();
  EXPECT_THAT(states(), ElementsAre("dismissed")) << "neither opened again nor done";
}

TEST_F(AskedQuestions, OfStrangersAndInCompanyAreNoCommitments) {
  store.import({{.id = "stranger", .question = "May I introduce myself?"},
                {.id = "b1", .at = "2026-03-01T10:00:00Z", .from = me, .to = {zoe}},
                {.id = "b2", .at = "2026-03-02T10:00:00Z", .to = {me, ben}, .references = {"b1"}, .question = "Who?"},
                {.id = "c1", .at = "2026-03-01T10:00:00Z", .from = me, .to = {zoe, ben}},
                {.id = "c2", .at = "2026-03-02T10:00:00Z", .references = {"c1"}, .question = "Just us two?"}});
  EXPECT_THAT(states(), IsEmpty());
  store.import({{.id = "mine", .at = "2026-02-28T10:00:00Z", .from = me, .to = {zoe}},
                {.id = "link", .at = "2026-02-28T11:00:00Z", .references = {"mine", "stranger"}}});
  EXPECT_THAT(states(), ElementsAre("open")) << "no stranger: an earlier mail of the user's turned up";
}

} // namespace
} // namespace orvan
