#include <algorithm>
#include <random>

#include "import_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::string minute(std::size_t number) {
  return formatInternetDateTime(instantOf("2026-03-01T10:00:00Z") + std::chrono::minutes{number});
}

std::vector<TestMail> numbered(std::vector<TestMail> mails) {
  for (std::size_t number = 0; number < mails.size(); ++number) {
    mails[number].at = minute(number);
  }
  return mails;
}

TEST(MailThreads, AreTheSameInWhateverOrderTheirMailsArrive) {
  // Two conversations; of the first one a mail in the middle is missing and one end refers to the other end alone.
  auto mails = numbered({{.id = "a1"},
                         {.id = "a2", .from = me, .to = {zoe}, .references = {"a1"}},
                         {.id = "a4", .references = {"a3", "a2"}},
                         {.id = "a5", .references = {"a3"}},
                         {.id = "a6", .from = ben, .references = {"a5"}},
                         {.id = "a7", .references = {"a6", "a1"}},
                         {.id = "b1", .from = ben},
                         {.id = "b2", .from = "cleo@out.example", .references = {"b0", "b1"}},
                         {.id = "b3", .references = {"b0"}}});
  Texts expected;
  std::mt19937 random{7};
  for (const auto mailsPerBatch : std::vector<std::size_t>{100, 100, 100, 4, 4, 4, 1, 1, 1}) {
    ImportStore store;
    store.import(mails, mailsPerBatch);
    const auto threads = store.threads();
    expected = expected.empty() ? threads : expected;
    EXPECT_EQ(threads, expected) << "with " << mailsPerBatch << " in a batch";
    EXPECT_THAT(store.texts("SELECT id FROM thread"), SizeIs(2)) << "joined threads leave nothing behind";
    std::ranges::shuffle(mails, random);
  }
}

TEST(MailThreads, JoinEverythingThatIsKnownOfThem) {
  ImportStore store;
  store.import(numbered({{.id = "a", .question = "Are you well?"}, {.id = "b", .from = ben}}));
  const auto ids = store.texts("SELECT id FROM thread ORDER BY id");
  ASSERT_THAT(ids, SizeIs(2));
  store.run("INSERT INTO exclusion_rule VALUES ('rule', 'thread', '" + ids[1] + "', '2026-03-02T10:00:00Z', NULL)");
  store.run("INSERT INTO deletion_tombstone VALUES ('" + ids[1] + "', 'thread', '2026-03-02T10:00:00Z')");

  store.import({{.id = "c", .at = minute(9), .references = {"a", "b"}}});
  for (const char* column : {"id FROM thread", "DISTINCT thread_id FROM thread_participant",
                             "thread_id FROM pending_question", "target_id FROM exclusion_rule"}) {
    EXPECT_THAT(store.texts(std::string{"SELECT "} + column), ElementsAre(ids[0])) << column;
  }
  EXPECT_THAT(store.texts("SELECT object_id FROM deletion_tombstone ORDER BY object_id"), ElementsAre(ids[0], ids[1]));
  EXPECT_THAT(store.waiting(), IsEmpty()) << "what was excluded stays so";
  store.import({{.id = "d", .at = minute(10), .references = {"b"}}});
  EXPECT_THAT(store.threads(), ElementsAre(minute(0) + " " + minute(1) + " " + minute(9) + " " + minute(10)))
      << "with a mail that names the joined thread's mails alone";
}

TEST(MailThreads, TakeReferencesThatMakeNoSenseAndOneIDTwice) {
  const auto mails = numbered({{.id = "self", .references = {"self", "self"}, .subject = "First"},
                               {.id = "egg", .references = {"hen"}},
                               {.id = "hen", .references = {"egg"}},
                               {.id = "self", .subject = "Second"}});
  for (const auto mailsPerBatch : std::vector<std::size_t>{1, 4}) {
    ImportStore store;
    EXPECT_EQ(store.import(mails, mailsPerBatch).known, 1);
    EXPECT_THAT(store.threads(), ElementsAre(minute(0), minute(1) + " " + minute(2)));
    EXPECT_THAT(store.texts("SELECT subject FROM thread_text WHERE subject <> 'Hello'"), ElementsAre("First"));
  }
}

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

TEST_F(AskedQuestions, AreCommitmentsUntilTheAnswer) {
  askMe();
  EXPECT_THAT(store.commitments(), ElementsAre("unanswered_question"));
  EXPECT_THAT(store.texts("SELECT detected_at || ' ' || statement FROM claim_text "
                          "JOIN claim_evidence evidence ON evidence.claim_id = claim_text.claim_id "
                          "JOIN open_loop ON open_loop.evidence_ref = evidence.id "
                          "JOIN source_event ON source_event.id = evidence.source_event_id"),
              ElementsAre("2026-03-02T10:00:01Z Shall we meet?"))
      << "after the mail itself, and before whatever follows";
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

TEST_F(AskedQuestions, AreAnsweredByMailToThemOrThatRefersToThem) {
  askMe();
  const TestMail toBen{.id = "ben", .at = "2026-03-03T10:00:00Z", .from = me, .to = {ben}, .references = {"mine"}};
  store.import({toBen});
  EXPECT_THAT(states(), ElementsAre("open")) << "a later mail of the thread, to somebody else";
  store.import({{.id = "zoe", .at = "2026-03-03T11:00:00Z", .from = me, .to = {zoe, ben}, .references = {"mine"}}});
  EXPECT_THAT(states(), ElementsAre("done")) << "a later mail of the thread to her";
  store.import({{.id = "again", .at = "2026-03-04T10:00:00Z", .question = "And the boat?"}});
  EXPECT_THAT(states(), testing::UnorderedElementsAre("done", "open")) << "in a thread of her own: no stranger asks";
  store.import({{.id = "same", .at = "2026-03-04T10:00:00Z", .from = me, .to = {ben}, .references = {"again"}}});
  EXPECT_THAT(states(), ElementsAre("done", "done")) << "an answer of the same second refers to it";
}

TEST_F(AskedQuestions, OfStrangersAndInCompanyAreNoCommitments) {
  store.import({{.id = "stranger", .question = "May I introduce myself?"},
                {.id = "b1", .at = "2026-03-03T10:00:00Z", .from = me, .to = {zoe}},
                {.id = "b2", .at = "2026-03-04T10:00:00Z", .to = {me, ben}, .references = {"b1"}, .question = "Who?"}});
  EXPECT_THAT(states(), IsEmpty());
  store.import({{.id = "mine", .at = "2026-02-28T10:00:00Z", .from = me, .to = {zoe}}});
  EXPECT_THAT(states(), ElementsAre("open")) << "no stranger: an earlier mail of the user's turned up";
}

} // namespace
} // namespace orvan
