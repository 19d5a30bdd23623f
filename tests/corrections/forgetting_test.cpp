#include "application/corrections/forgetting.h"

#include <fstream>

#include "../import/ledger/import_store.h"
#include "application/import/ledger/identity_moves.h"
#include "application/import/ledger/meeting_importer.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

constexpr const char* now = "2026-03-05T12:00:00Z";
constexpr const char* zoeAtWork = "zwhite@work.example";

std::string keyOf(std::string_view address) {
  return personIDOf(identityIDOf(address));
}

/// Zoë, under two addresses, and Ben. What only she is part of has "Lantern" in it.
const std::vector<TestMail> mails{
    {.id = "first", .at = "2026-02-01T10:00:00Z", .from = me, .to = {zoe}, .subject = "Lantern"},
    {.id = "asked",
     .at = "2026-02-02T10:00:00Z",
     .references = {"first"},
     .fromName = "Zoë White",
     .question = "Lantern?"},
    {.id = "work", .at = "2026-02-03T10:00:00Z", .from = zoeAtWork, .subject = "Lantern", .fromName = "Zoë White"},
    {.id = "both", .at = "2026-02-04T10:00:00Z", .from = me, .to = {zoe, ben}, .subject = "Boat"},
    {.id = "crowd", .at = "2026-02-05T10:00:00Z", .to = {me, ben}, .references = {"both"}},
    {.id = "bens", .at = "2026-02-04T12:00:00Z", .from = ben, .references = {"both"}, .question = "When?"},
};

class Forgetting : public testing::Test {
 protected:
  MeetingReport importMeetings() {
    const auto file = store.folder.path() / "calendar.ics";
    std::ofstream(file) << "BEGIN:VCALENDAR\nVERSION:2.0\n"
                           "BEGIN:VEVENT\nUID:a\nDTSTAMP:20260101T000000Z\nDTSTART:20260306T090000Z\nSUMMARY:Lantern\n"
                           "ATTENDEE:mailto:zoe@out.example\nATTENDEE:mailto:mira@home.example\nEND:VEVENT\n"
                           "BEGIN:VEVENT\nUID:b\nDTSTAMP:20260101T000000Z\nDTSTART:20260307T090000Z\nSUMMARY:Boat\n"
                           "ATTENDEE:mailto:zoe@out.example\nATTENDEE:mailto:ben@out.example\n"
                           "ATTENDEE:mailto:mira@home.example\nEND:VEVENT\nEND:VCALENDAR\n";
    CalendarSource source(file, importWindow(ImportStore::asOf()), {me});
    return MeetingImporter(store.queue, ImportStore::context(), file).import(source);
  }

  /// What the user and the library wrote about Zoë, and one thing about Ben.
  void decide() {
    const auto key = keyOf(zoe);
    const auto loop = store.texts("SELECT id FROM open_loop").front();
    const auto thread =
        store.texts("SELECT thread_id FROM interaction WHERE occurred_at = '2026-02-01T10:00:00Z'").front();
    store.queue.write([&](Connection& connection) {
      mergePeople(keyOf(zoeAtWork), key, now, connection);
      const auto run = [&](const char* sql, const auto&... values) { connection.execute(sql, values...); };
      run("INSERT INTO person_naming VALUES (?, 9)", key);
      run("INSERT INTO relationship_attention_candidate VALUES (?1, ?1, '', '', '', '', '', '', '')", key);
      run("INSERT INTO relationship_attention_candidate_evidence VALUES (?, 'loop', ?)", key, loop);
      run("INSERT INTO relationship_attention_disposition VALUES (?1, ?1, 'dismissed', NULL, '', '')", key);
      run("INSERT INTO exclusion_rule VALUES ('e1', 'person', ?, '', ''), ('e2', 'thread', ?, '', NULL)", key, thread);
      run("INSERT INTO user_correction VALUES ('u1', 'person', ?, ''), ('u2', 'identity_membership', ?, '')", key,
          identityIDOf(zoe));
      run("INSERT INTO source_object VALUES ('captured', 'note', '', NULL)");
      run("INSERT INTO capture_artifact VALUES ('a', 'captured', 'Lantern')");
      run("INSERT INTO follow_up VALUES ('f', 'captured', ?, '', 'scheduled', '', NULL, 'op', ?)", key, loop);
      run("INSERT INTO post_commit_obligation VALUES ('op', 'reminder', 'key-f', '', NULL)");
      run("INSERT INTO user_action VALUES (1, 'dismiss', ?, '', NULL, '{}')", key);
      run("INSERT INTO user_action VALUES (2, 'rename', ?, '', NULL, '{\"words\":\"no Zoë White\"}')", keyOf(ben));
      run("INSERT INTO user_action VALUES (3, 'rename', ?, '', NULL, '{\"words\":\"Zoë Whiteley\"}')", keyOf(ben));
      run("INSERT INTO shown_item VALUES (?, 'item', '')", key);
    });
  }

  std::optional<TracesOfPerson> forgetZoe() {
    return store.queue.write([](Connection& connection) { return forget(keyOf(zoe), now, connection); });
  }

  void expectNoTrace() {
    for (const auto& row : store.rowsOf()) {
      if (row.starts_with("deletion_tombstone")) {
        continue;
      }
      for (const auto& trace :
           {std::string{zoe}, std::string{zoeAtWork}, std::string{"Zoë White'"}, std::string{"Zoë White\""},
            std::string{"Lantern"}, identityIDOf(zoe), identityIDOf(zoeAtWork)}) {
        EXPECT_THAT(row, Not(HasSubstr(trace)));
      }
    }
  }

  ImportStore store;
};

TEST_F(Forgetting, LeavesNoTraceOfAPersonAndNoImportBringsThemBack) {
  store.import(mails);
  importMeetings();
  decide();
  const auto traces = forgetZoe();
  ASSERT_TRUE(traces);
  EXPECT_THAT(traces->addresses, ElementsAre(zoe, zoeAtWork));
  EXPECT_EQ(traces->mails, 4);
  EXPECT_EQ(traces->meetings, 1);
  EXPECT_EQ(traces->shared, 2);
  EXPECT_EQ(traces->decisions, 1);
  EXPECT_EQ(traces->followUps, 1);
  expectNoTrace();
  EXPECT_THAT(store.texts("SELECT kind || number FROM user_action"), ElementsAre("rename3")) << "somebody else's";
  EXPECT_THAT(store.texts("SELECT subject FROM thread_text ORDER BY subject"), ElementsAre("Boat", "Boat"));
  EXPECT_THAT(store.upcoming(ben), ElementsAre("2026-03-07T09:00:00Z"));
  EXPECT_THAT(store.waiting(ben), ElementsAre("2026-02-04T12:00:00Z")) << "what came after it was hers";
  EXPECT_FALSE(forgetZoe());

  const auto before = store.rowsOf({"interaction", "interaction_participant", "thread", "source_identity", "person"});
  EXPECT_EQ(store.import(mails).known, 6);
  const auto meetings = importMeetings();
  EXPECT_EQ(meetings.known, 1);
  EXPECT_EQ(meetings.forgotten, 1);
  const auto report = store.import({{.id = "new", .subject = "Lantern", .question = "Lantern?"},
                                    {.id = "toHer", .from = me, .to = {zoeAtWork}, .cc = {ben}},
                                    {.id = "listed", .from = ben, .to = {me}, .lists = {zoe}},
                                    {.id = "toBoth", .from = me, .to = {zoe, ben}, .references = {"both"}}});
  EXPECT_EQ(report.forgotten, 2);
  EXPECT_EQ(report.imported, 2);
  expectNoTrace();
  EXPECT_THAT(store.rowsOf({"interaction", "interaction_participant", "thread", "source_identity", "person"}),
              testing::IsSupersetOf(before));
}

TEST_F(Forgetting, LeavesTheUserAlone) {
  store.import(mails);
  store.import({}, 1, {me, zoe});
  const auto before = store.rowsOf();
  EXPECT_FALSE(forgetZoe());
  EXPECT_THAT(store.rowsOf(), ElementsAreArray(before));
}

} // namespace
} // namespace orvan
