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

TEST(ImportedMail, IsBetweenTwoWhenTheUserAloneIsAddressed) {
  ImportStore store;
  store.import(
      {{.id = "learnt", .from = ben, .to = {"dev@out.example"}, .isBulk = true, .lists = {"dev@out.example"}}});
  const auto kinds = [&store](TestMail mail) {
    mail.id = mail.at;
    store.import({mail});
    return store.texts("SELECT conversation_kind FROM source_event JOIN interaction USING (id) WHERE occurred_at = '" +
                       mail.at + "'");
  };
  EXPECT_THAT(kinds({.at = "2026-03-01T01:00:00Z", .cc = {ben, "cleo@out.example"}}), ElementsAre("direct"));
  EXPECT_THAT(kinds({.at = "2026-03-01T02:00:00Z", .to = {me, "dev@out.example"}, .isBulk = true}),
              ElementsAre("direct"));
  EXPECT_THAT(kinds({.at = "2026-03-01T03:00:00Z", .to = {me, "talk-list@out.example"}}), ElementsAre("direct"));
  EXPECT_THAT(kinds({.at = "2026-03-01T04:00:00Z", .to = {me, ben}}), ElementsAre("group"));
  EXPECT_THAT(kinds({.at = "2026-03-01T05:00:00Z", .to = {ben}, .cc = {me}}), ElementsAre("group"));
  EXPECT_THAT(kinds({.at = "2026-03-01T06:00:00Z", .to = {"dev@out.example"}, .cc = {me}}), ElementsAre("group"));
  EXPECT_THAT(store.people(), ElementsAre(zoe)) << "who else is on a mail has no contact with the user by it";

  Texts crowd;
  for (int number = 0; number < 5000; ++number) {
    crowd.push_back("guest" + std::to_string(number) + "@out.example");
  }
  store.import({{.id = "invitation", .from = me, .to = crowd}});
  EXPECT_THAT(store.people(), SizeIs(201)) << "of very many readers only some are kept";
  store.import({{.id = "letter", .from = me, .to = {ben}}});
  EXPECT_LT(store.outlook(crowd.front()).exchange, store.outlook(ben).exchange / 2) << "and it is no letter to any";
}

TEST(ImportedMail, OfMachinesListsAndOfficesMakesNobodyToGetBackTo) {
  ImportStore store;
  const auto report = store.import({{.id = "news", .isBulk = true},
                                    {.id = "bulk", .from = ben, .isAutomated = true},
                                    {.id = "elsewhere", .to = {"dev@out.example"}, .isBulk = true},
                                    {.id = "office", .from = "support@out.example"},
                                    {.id = "mine", .from = me, .to = {"team-list@out.example"}, .isAutomated = true}});
  EXPECT_EQ(report.automated, 2);
  EXPECT_EQ(report.elsewhere, 1);
  EXPECT_EQ(report.imported, 2);
  EXPECT_THAT(store.people(), IsEmpty());
  store.import({{.id = "a", .at = "2026-03-01T09:00:00Z", .references = {"elsewhere"}},
                {.id = "answer", .from = ben, .to = {"dev@out.example"}, .references = {"mine"}, .isBulk = true}});
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(zoe, ben)) << "one answers the user";
  EXPECT_THAT(store.waiting(), ElementsAre("2026-03-01T09:00:00Z")) << "what does not concern the user has no say";
  EXPECT_THAT(store.waiting(ben), IsEmpty());
}

TEST(ImportedMail, ToAnAddressThatManyWriteToAndThatNeverWritesIsListMail) {
  ImportStore store;
  const std::string dev = "dev@out.example";
  store.import({{.id = "mine", .from = me, .to = {dev}}});
  EXPECT_THAT(store.people(), ElementsAre(dev));
  std::vector<TestMail> mails;
  mails.reserve(24);
  for (int number = 0; number < 24; ++number) {
    mails.push_back({.id = std::to_string(number),
                     .from = std::string(1, static_cast<char>('a' + number % 6)) + "@x.example",
                     .to = {dev},
                     .cc = {me}});
  }
  store.import(mails, 7);
  EXPECT_THAT(store.people(), testing::Not(testing::Contains(dev)));
  store.import({{.id = "toMe", .to = {me, dev}}});
  EXPECT_THAT(store.waiting(), SizeIs(1)) << "which addresses the user alone";
  store.import({{.id = "person", .from = dev}});
  EXPECT_THAT(store.people(), testing::Contains(dev)) << "it writes after all";
}

TEST(CopiesOfAMail, CompleteEachOtherInWhateverOrder) {
  const TestMail asked{.id = "asked", .at = "2026-03-02T10:00:00Z", .references = {"first"}, .question = "Shall we?"};
  auto viaList = asked;
  viaList.to = {"dev@out.example"};
  viaList.isBulk = true;
  auto inCompany = asked;
  inCompany.to = {me, ben};
  auto rewritten = viaList;
  rewritten.from = "dev@out.example";
  rewritten.cc = {me};
  std::vector<TestMail> copies{viaList, inCompany, rewritten, asked};
  const TestMail first{.id = "first", .at = "2026-03-01T10:00:00Z", .from = me, .to = {zoe}};
  for (int order = 0; order < 24; ++order) {
    std::ranges::next_permutation(copies, {}, [](const TestMail& mail) { return mail.from + mail.to.back(); });
    for (const std::size_t mailsPerBatch : {1U, 100U}) {
      ImportStore store;
      store.import({first});
      const auto report = store.import(copies, mailsPerBatch);
      EXPECT_EQ(report.known + report.completed + report.imported + report.elsewhere, 4);
      EXPECT_THAT(store.waiting(), ElementsAre("2026-03-02T10:00:00Z"));
      EXPECT_THAT(store.commitments(), ElementsAre("unanswered_question"));
      EXPECT_THAT(store.texts("SELECT sum(received) || ' ' || sum(in_company) FROM contact_week"), ElementsAre("1 0"));
      EXPECT_THAT(store.texts("SELECT id FROM interaction WHERE direction = 'inbound'"), SizeIs(1));
      store.import({{.id = "answer",
                     .at = "2026-03-02T09:00:00Z",
                     .from = me,
                     .to = {zoe},
                     .references = {"asked"},
                     .isBulk = true}});
      EXPECT_THAT(store.waiting(), IsEmpty()) << "answered, although the clock of one was wrong";
      EXPECT_THAT(store.commitments(), IsEmpty());
    }
  }
}

TEST(ImportedMail, IsTakenOnceFromWhateverFile) {
  ImportStore store;
  std::vector<TestMail> mails{{.id = "a", .question = "Shall we?"},
                              {.id = "b", .from = me, .to = {ben}},
                              {.id = "list", .isBulk = true},
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
  // NOLINTBEGIN(misc-const-correctness): clang-tidy 19 does not see that the import changes all of these.
  ImportStore store;
  const std::vector<MailItem> items{TestMail{.id = "a"}, MailSkip{MailSkipReason::undated}, TestMail{.id = "a"},
                                    MailSkip{MailSkipReason::noSender}, MailSkip{MailSkipReason::undated}};
  TestMailbox mailbox(items);
  std::vector<std::int64_t> progress;
  MailImporter importer(store.queue, ImportStore::context(), 2);
  // NOLINTEND(misc-const-correctness)
  const auto tell = [&progress](const MailReport& soFar) { progress.push_back(soFar.read); };
  const auto report = importer.import(mailbox, tell);
  EXPECT_THAT(progress, ElementsAre(2, 4, 5));
  EXPECT_EQ(report.imported, 1);
  EXPECT_EQ(report.known, 1);
  EXPECT_THAT(report.skipped,
              ElementsAre(testing::Pair(MailSkipReason::undated, 2), testing::Pair(MailSkipReason::noSender, 1)));
}

TEST(ImportedMail, KeepsNoMoreOfATextThanPeopleRead) {
  ImportStore store;
  const std::string subject(8'000'000, 'x');
  store.import({{.id = "a", .subject = subject, .fromName = subject, .question = "Is it " + subject + "?"}});
  EXPECT_THAT(store.texts("SELECT length(subject) || ' ' || length(question) || ' ' || length(display_name) "
                          "FROM thread_text, pending_question, person"),
              ElementsAre("500 300 200"));
  EXPECT_EQ(leadingCharacters("aöb", 2), "aö") << "characters are never cut through";
}

TEST(OwnAddress, ToldLaterTakesItsMailAndItsPersonBack) {
  ImportStore store;
  const std::string mine = "mira@work.example";
  const std::vector<TestMail> mails{
      {.id = "a", .at = "2026-03-01T10:00:00Z", .from = me, .to = {zoe}},
      {.id = "b", .at = "2026-03-02T10:00:00Z", .references = {"a"}, .question = "When do you arrive?"},
      {.id = "c", .at = "2026-03-03T10:00:00Z", .from = mine, .to = {zoe, me}, .references = {"b"}},
      {.id = "d", .at = "2026-03-04T10:00:00Z", .from = mine},
      {.id = "both", .at = "2026-03-04T11:00:00Z", .to = {me, mine}},
      {.id = "company", .at = "2026-03-04T12:00:00Z", .to = {me, mine, ben}},
      {.id = "there", .at = "2026-03-04T13:00:00Z", .from = ben, .to = {mine}}};
  store.import(mails);
  EXPECT_THAT(store.people(), testing::UnorderedElementsAre(zoe, mine));
  store.import({}, 100, {mine});
  EXPECT_THAT(store.people(), ElementsAre(zoe));
  EXPECT_FALSE(store.outlook(mine).canHaveReason());
  EXPECT_THAT(store.texts("SELECT question FROM pending_question"), IsEmpty()) << "the user's own words answered it";
  EXPECT_THAT(store.waiting(), IsEmpty());

  EXPECT_EQ(store.import(mails).completed, 3) << "read again, it tells whom the user wrote to and who to the user";
  EXPECT_THAT(store.texts("SELECT direction || ' ' || conversation_kind FROM interaction "
                          "JOIN source_event ON source_event.id = source_event_id ORDER BY occurred_at"),
              ElementsAre("outbound direct", "inbound direct", "outbound direct", "outbound direct", "inbound direct",
                          "inbound group", "inbound direct"));
  EXPECT_THAT(store.waiting(), ElementsAre("2026-03-04T11:00:00Z")) << "written to two addresses of the user's";
  EXPECT_THAT(store.waiting(ben), ElementsAre("2026-03-04T13:00:00Z"));
  EXPECT_THAT(store.freshness(), ElementsAre("current")) << "one account, whichever address an import was told first";
}

TEST(CutShortImport, KeepsWhatCameBeforeTheSourceFailed) {
  ImportStore store;
  const auto mails = manyMails(10);
  TestMailbox broken({mails.begin(), mails.end()}, [](std::size_t given) {
    if (given == 7) {
      throw std::runtime_error("the mailbox cannot be read on");
    }
  });
  EXPECT_THROW(MailImporter(store.queue, ImportStore::context(), 3).import(broken), std::runtime_error);
  EXPECT_THAT(store.freshness(), ElementsAre("stale"));
  const auto rerun = store.import(mails);
  EXPECT_EQ(rerun.known, 7);
  EXPECT_EQ(rerun.imported, 3);
  EXPECT_THAT(store.texts("SELECT freshness_state || ' ' || last_successful_sync_at FROM source_progress_projection"),
              ElementsAre("current 2026-03-05T12:00:00Z"));
}

TEST(CutShortImport, KeepsWhatWasReadBeforeAStopAndLeavesTheRestToTheNext) {
  ImportStore store;
  const auto mails = manyMails(10);
  ImportWatch watch;
  TestMailbox mailbox({mails.begin(), mails.end()}, [&watch](std::size_t given) {
    if (given == 7) {
      watch.requestStop();
    }
  });
  auto context = ImportStore::context();
  context.watch = &watch;
  const auto report = MailImporter(store.queue, context, 3).import(mailbox);
  EXPECT_TRUE(report.isStopped);
  EXPECT_EQ(report.imported, 8) << "with the one that was being read";
  EXPECT_EQ(watch.progress(), (ImportProgress{8, 8, {.read = 8, .total = 10}}));
  EXPECT_THAT(store.freshness(), ElementsAre("stale"));

  EXPECT_EQ(store.import(mails).imported, 2);
  ImportStore uninterrupted;
  uninterrupted.import(mails);
  EXPECT_EQ(store.texts(everything), uninterrupted.texts(everything));
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
