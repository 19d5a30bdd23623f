#include "application/import/ledger/mail_importer.h"

#include "OrvanStore/store_error.h"
#include "application/import/ledger/bounded_text.h"
#include "import_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* everything = R"sql(
SELECT id || occurred_at || direction || COALESCE(source_identity_id, '') || thread_id FROM interaction
UNION ALL SELECT id || display_name FROM person
UNION ALL SELECT source_identity_id || interaction_id FROM interaction_participant
UNION ALL SELECT source_identity_id || thread_id FROM thread_participant
UNION ALL SELECT id || state FROM open_loop
UNION ALL SELECT interaction_id FROM pending_question
UNION ALL SELECT message_key || state || COALESCE(thread_id, '') FROM mail_reference
ORDER BY 1
)sql";

std::vector<TestMail> manyMails(std::size_t count) {
  std::vector<TestMail> mails;
  mails.reserve(count);
  for (std::size_t number = 0; number < count; ++number) {
    mails.push_back({.id = std::to_string(number), .from = "person" + std::to_string(number % 7) + "@out.example"});
  }
  return mails;
}

TEST(ImportedMail, IsTheHistoryOfThePeopleOnIt) {
  ImportStore store;
  const auto report =
      store.import({{.id = "a", .at = "2026-03-01T10:00:00Z", .subject = "Lake"},
                    {.id = "b", .at = "2026-03-02T10:00:00Z", .from = me, .to = {zoe, me}, .references = {"a"}},
                    {.id = "c", .at = "2026-03-03T10:00:00Z", .from = ben},
                    {.id = "note", .from = me, .to = {me}}});
  EXPECT_EQ(report.imported, 3);
  EXPECT_EQ(report.notes, 1);
  EXPECT_THAT(store.texts("SELECT occurred_at || ' ' || direction || ' ' || COALESCE(address, 'the user') "
                          "FROM interaction LEFT JOIN source_identity ON source_identity.id = source_identity_id "
                          "ORDER BY occurred_at"),
              ElementsAre("2026-03-01T10:00:00Z inbound zoe@out.example", "2026-03-02T10:00:00Z outbound the user",
                          "2026-03-03T10:00:00Z inbound ben@out.example"));
  EXPECT_THAT(store.waiting(), IsEmpty()) << "answered";
  EXPECT_THAT(store.waiting(ben), ElementsAre("2026-03-03T10:00:00Z"));
  EXPECT_THAT(store.texts("SELECT subject FROM thread_text ORDER BY subject"), ElementsAre("Hello", "Lake"));
  EXPECT_THAT(store.texts("SELECT kind FROM source_object JOIN thread USING (id)"), ElementsAre("thread", "thread"));

  store.import({{.id = "d", .fromName = "Zoë"}, {.id = "e", .fromName = "Someone else"}});
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(ben, "Zoë")) << "the first name that the person gave";
}

TEST(ImportedMail, ToSeveralPeopleKeepsNobodyWaiting) {
  ImportStore store;
  Texts crowd{me};
  for (int number = 0; number < 5000; ++number) {
    crowd.push_back("guest" + std::to_string(number) + "@out.example");
  }
  store.import({{.id = "a", .to = {me, ben}}, {.id = "b", .to = crowd}});
  EXPECT_THAT(store.texts("SELECT conversation_kind FROM source_event"), ElementsAre("group", "group"));
  EXPECT_THAT(store.waiting(), IsEmpty());
  EXPECT_THAT(store.people(), SizeIs(201)) << "the writer, 199 of the crowd, and Ben";
}

TEST(ImportedMail, FromMachinesMakesNoPeople) {
  ImportStore store;
  const auto report = store.import({{.id = "list", .question = "Any news?", .isList = true},
                                    {.id = "bulk", .from = ben, .isAutomated = true},
                                    {.id = "both", .isList = true, .isAutomated = true},
                                    {.id = "mine", .from = me, .to = {ben}, .isAutomated = true}});
  EXPECT_EQ(report.automated, 4);
  EXPECT_THAT(store.people(), IsEmpty());
  store.import({{.id = "a", .at = "2026-03-01T09:00:00Z", .references = {"list"}}});
  EXPECT_THAT(store.people(), ElementsAre(zoe));
  EXPECT_THAT(store.waiting(), IsEmpty()) << "the list had the last word";
}

TEST(ImportedMail, IsTakenOnceFromWhateverFile) {
  ImportStore store;
  std::vector<TestMail> mails{{.id = "a", .question = "Shall we?"},
                              {.id = "b", .from = me, .to = {ben}},
                              {.id = "list", .isList = true},
                              {.id = "bulk", .isAutomated = true}};
  store.import(mails);
  const auto before = store.texts(everything);
  std::ranges::reverse(mails);
  EXPECT_EQ(store.import(mails).known, 4);
  EXPECT_EQ(store.texts(everything), before);

  store.run("DELETE FROM person");
  store.run("DELETE FROM source_identity");
  store.import(mails);
  EXPECT_THAT(store.texts("SELECT id FROM person"), IsEmpty()) << "whom the user removed stays away";
}

TEST(ImportedMail, CountsEveryItemOnceAndTellsOfEveryBatch) {
  ImportStore store;
  TestMailbox mailbox({TestMail{.id = "a"}, MailSkip{MailSkipReason::undated}, TestMail{.id = "a"},
                       MailSkip{MailSkipReason::noSender}, MailSkip{MailSkipReason::undated}});
  std::vector<std::int64_t> progress;
  const auto report =
      MailImporter(store.queue, ImportStore::context(), 2).import(mailbox, [&](const MailReport& soFar, auto...) {
        progress.push_back(soFar.read);
      });
  EXPECT_THAT(progress, ElementsAre(2, 4, 5));
  EXPECT_EQ(report.imported, 1);
  EXPECT_EQ(report.known, 1);
  EXPECT_THAT(report.skipped,
              ElementsAre(testing::Pair(MailSkipReason::undated, 2), testing::Pair(MailSkipReason::noSender, 1)));
}

TEST(ImportedMail, KeepsNoMoreOfATextThanPeopleRead) {
  ImportStore store;
  const std::string subject(8'000'000, 'x');
  store.import({{.id = "a", .subject = subject, .fromName = subject, .question = subject}});
  EXPECT_THAT(store.texts("SELECT length(subject) || ' ' || length(question) || ' ' || length(display_name) "
                          "FROM thread_text, pending_question, person"),
              ElementsAre("500 300 200"));
  EXPECT_EQ(leadingCharacters("aöb", 2), "aö") << "characters are never cut through";
}

TEST(OwnAddress, ToldLaterTakesItsMailAndItsPersonBack) {
  ImportStore store;
  const std::string mine = "mira@work.example";
  store.import({{.id = "a", .at = "2026-03-01T10:00:00Z", .from = me, .to = {zoe}},
                {.id = "b", .at = "2026-03-02T10:00:00Z", .references = {"a"}, .question = "When do you arrive?"},
                {.id = "c", .at = "2026-03-03T10:00:00Z", .from = mine, .to = {zoe}, .references = {"b"}},
                {.id = "d", .at = "2026-03-04T10:00:00Z", .from = mine},
                {.id = "both", .at = "2026-03-04T11:00:00Z", .to = {me, mine}},
                {.id = "company", .at = "2026-03-04T12:00:00Z", .to = {me, mine, ben}},
                {.id = "list", .at = "2026-03-04T13:00:00Z", .to = {me, mine}, .isList = true}});
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(zoe, mine, ben));
  store.import({}, 100, {mine});
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(zoe, ben));
  EXPECT_THAT(store.waiting(mine), IsEmpty());
  EXPECT_THAT(store.texts("SELECT direction || ' ' || conversation_kind FROM interaction "
                          "JOIN source_event ON source_event.id = source_event_id ORDER BY occurred_at"),
              ElementsAre("outbound direct", "inbound direct", "outbound direct", "outbound direct", "inbound direct",
                          "inbound group", "inbound group"));
  EXPECT_THAT(store.waiting(), ElementsAre("2026-03-04T11:00:00Z")) << "written to two addresses of the user's";
  EXPECT_THAT(store.texts("SELECT question FROM pending_question"), IsEmpty()) << "the user's own words answered it";
  store.import({{.id = "e", .from = mine, .to = {zoe}}});
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(zoe, ben)) << "remembered for later imports";
  EXPECT_THAT(store.freshness(), ElementsAre("current")) << "one account, whichever address an import was told first";
}

TEST(CutShortImport, KeepsWhatCameBeforeTheSourceFailed) {
  ImportStore store;
  const auto mails = manyMails(10);
  TestMailbox broken({mails.begin(), mails.begin() + 7}, true);
  EXPECT_THROW(MailImporter(store.queue, ImportStore::context(), 3).import(broken), std::runtime_error);
  EXPECT_THAT(store.freshness(), ElementsAre("stale"));
  const auto rerun = store.import(mails);
  EXPECT_EQ(rerun.known, 7);
  EXPECT_EQ(rerun.imported, 3);
  EXPECT_THAT(store.texts("SELECT freshness_state || ' ' || last_successful_sync_at FROM source_progress_projection"),
              ElementsAre("current 2026-03-05T12:00:00Z"));
}

TEST(CutShortImport, LeavesWholeBatchesWhenTheDiskIsFull) {
  ImportStore store;
  const auto mails = manyMails(2000);
  const auto limitPages = [&](int pages) {
    store.queue.withoutTransaction(
        [&](Connection& connection) { connection.executeScript("PRAGMA max_page_count = " + std::to_string(pages)); });
  };
  store.import({});
  limitPages(std::stoi(store.texts("SELECT page_count || '' FROM pragma_page_count").at(0)) + 120);
  EXPECT_THROW(store.import(mails, 100), StoreError);
  const auto kept = store.texts("SELECT id FROM interaction").size();
  EXPECT_GT(kept, 0U);
  EXPECT_LT(kept, mails.size());
  EXPECT_EQ(kept % 100, 0U);
  EXPECT_THAT(store.texts("SELECT state FROM mail_reference"), SizeIs(kept));
  EXPECT_THAT(store.freshness(), ElementsAre("stale"));

  limitPages(1'000'000);
  EXPECT_EQ(store.import(mails, 100).known, static_cast<std::int64_t>(kept));
  EXPECT_THAT(store.texts("SELECT id FROM interaction"), SizeIs(mails.size()));
}

TEST(LongImport, KeepsTheLogAsSmallAsOneBatchMakesIt) {
  const auto logAfter = [](std::size_t count) {
    ImportStore store;
    store.import(manyMails(count), 20);
    return std::filesystem::file_size(store.file.native() + "-wal");
  };
  EXPECT_LT(logAfter(1000), 3 * logAfter(100));
}

} // namespace
} // namespace orvan
