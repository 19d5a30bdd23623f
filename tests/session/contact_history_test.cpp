#include "application/session/contact_history.h"

#include <fstream>

#include "../import/ledger/import_store.h"
#include "application/corrections/forgetting.h"
#include "application/corrections/person_corrections.h"
#include "application/corrections/taking_back.h"
#include "application/import/ledger/meeting_importer.h"
#include "application/import/ledger/own_addresses.h"
#include "application/session/contact_overview.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr const char* now = "2026-03-05T12:00:00Z";

std::string keyOf(std::string_view address) {
  return personIDOf(identityIDOf(address));
}

/// A mail to so many that it is no letter to any of them.
TestMail circular() {
  TestMail mail{.id = "circular", .at = "2026-02-12T10:00:00Z", .from = me, .to = {zoe, ben}};
  for (char letter = 'a'; letter < 'l'; ++letter) {
    mail.to.push_back(letter + std::string{"@many.example"});
  }
  return mail;
}

class ContactCounts : public testing::Test {
 protected:
  void importMeetings(std::string_view days) {
    const auto file = store.folder.path() / "calendar.ics";
    std::ofstream stream(file);
    stream << "BEGIN:VCALENDAR\nVERSION:2.0\n";
    for (const char day : days) {
      stream << "BEGIN:VEVENT\nUID:" << day << "\nDTSTAMP:20260101T000000Z\nDTSTART:2026030" << day
             << "T090000Z\nATTENDEE:mailto:zoe@out.example\nATTENDEE:mailto:ben@out.example\n"
                "ATTENDEE:mailto:mira@home.example\nEND:VEVENT\n";
    }
    stream << "END:VCALENDAR\n";
    stream.close();
    CalendarSource source(file, importWindow(ImportStore::asOf()), {me});
    MeetingImporter(store.queue, ImportStore::context(), file).import(source);
  }

  /// Each way and met, of everybody in every week, with the last mails.
  Texts counted() {
    auto rows = store.texts(R"sql(
SELECT source_identity_id || ' ' || week || ' ' || (sent + sent_in_company) || ' ' ||
       (received + in_company - sent_in_company) || ' ' || met AS text
FROM contact_week WHERE sent + received + in_company + met > 0 ORDER BY text
)sql");
    std::ranges::copy(store.texts(R"sql(
SELECT source_identity_id || ' ' || COALESCE(last_mail_to_at, '') || ' ' || COALESCE(last_mail_from_at, '') AS text
FROM contact_span WHERE mails_to + mails_from > 0 ORDER BY text
)sql"),
                      std::back_inserter(rows));
    return rows;
  }
  Texts countedByHand() {
    auto rows = store.texts(R"sql(
SELECT p.source_identity_id || ' ' || (strftime('%s', i.occurred_at) / 604800) || ' ' || sum(i.direction = 'outbound')
       || ' ' || sum(i.direction = 'inbound') || ' ' || sum(i.kind = 'meeting') AS text
FROM interaction_participant p JOIN interaction i ON i.id = p.interaction_id
GROUP BY p.source_identity_id, strftime('%s', i.occurred_at) / 604800 ORDER BY text
)sql");
    std::ranges::copy(store.texts(R"sql(
SELECT p.source_identity_id || ' ' || COALESCE(max(CASE i.direction WHEN 'outbound' THEN i.occurred_at END), '')
       || ' ' || COALESCE(max(CASE i.direction WHEN 'inbound' THEN i.occurred_at END), '') AS text
FROM interaction_participant p JOIN interaction i ON i.id = p.interaction_id AND i.kind = 'message'
GROUP BY p.source_identity_id ORDER BY text
)sql"),
                      std::back_inserter(rows));
    return rows;
  }

  void write(const std::function<void(Connection&)>& body) { store.queue.write(body); }
  void expectTruth(const char* after) {
    SCOPED_TRACE(after);
    EXPECT_THAT(counted(), ElementsAreArray(countedByHand()));
  }
  ContactHistory history(std::string_view address, std::string_view at = now) {
    return store.queue.read(
        [&](Connection& connection) { return contactHistory(keyOf(address), instantOf(at), connection); });
  }

  ImportStore store;
};

TEST_F(ContactCounts, AreThoseOfTheInteractionsWhateverTheUserDid) {
  const std::vector<TestMail> mails{
      circular(),
      {.id = "group", .at = "2026-02-05T10:00:00Z", .to = {me, ben}},
      {.id = "group", .at = "2026-02-05T10:00:00Z", .to = {me}}, // A copy that tells more.
      {.id = "ahead", .at = "2026-09-01T10:00:00Z"},
      {.id = "answer", .at = "2026-03-02T10:00:00Z", .from = me, .to = {zoe}, .references = {"ahead"}},
      {.id = "bens", .at = "2026-03-03T10:00:00Z", .from = ben, .to = {me, zoe}, .references = {"circular"}},
  };
  store.import(mails, 2);
  importMeetings("123");
  expectTruth("import");
  store.import(mails);
  importMeetings("24");
  expectTruth("reading again, with two meetings cancelled and one more");
  write([](Connection& connection) {
    const std::vector<std::string> merged{keyOf(ben)};
    mergePeopleForUser(keyOf(zoe), merged, instantOf(now), connection);
  });
  EXPECT_EQ(history(zoe).mailsFrom.back() + history(zoe).mailsFrom.at(weeksOfHistory - 2), 2) << "of both addresses";
  write([](Connection& connection) { undoAction(std::nullopt, instantOf(now), connection); });
  write([](Connection& connection) { rememberOwnAddresses(Texts{ben}, now, connection, ToldBy::user); });
  expectTruth("an address that is the user's");
  write([](Connection& connection) { giveUpOwnAddress(ben, now, connection); });
  expectTruth("an address that is not");
  store.import(mails);
  expectTruth("reading everything anew");

  const Texts tables{"contact_week", "contact_span"};
  const auto kept = store.rowsOf(tables);
  for (const auto* statement :
       {"DROP INDEX contact_week_by_identity", "ALTER TABLE contact_week DROP COLUMN sent_in_company",
        "ALTER TABLE contact_span DROP COLUMN last_mail_to_at",
        "ALTER TABLE contact_span DROP COLUMN last_mail_from_at", "PRAGMA user_version = 4"}) {
    store.run(statement);
  }
  write(moveCanonicalSchemaForward);
  EXPECT_THAT(store.rowsOf(tables), ElementsAreArray(kept)) << "a store of the version before";

  write([](Connection& connection) { forget(keyOf(ben), now, connection); });
  expectTruth("forgetting");
  EXPECT_EQ(history(ben), history("nobody@out.example"));
}

TEST_F(ContactCounts, TellTheQuietStretchesAndTheLastOfEachKind) {
  store.import({{.id = "1", .at = "2023-01-01T10:00:00Z"},
                {.id = "2", .at = "2025-06-05T10:00:00Z", .from = me, .to = {zoe}},
                {.id = "3", .at = "2026-01-01T10:00:00Z"}});
  importMeetings("9");
  const auto told = history(zoe);
  const auto oldest = told.firstWeek;
  EXPECT_EQ(told.mailsTo.at(65), 1);
  EXPECT_EQ(told.lastMailToAt, instantOf("2025-06-05T10:00:00Z"));
  EXPECT_EQ(told.lastMailFromAt, instantOf("2026-01-01T10:00:00Z"));
  EXPECT_EQ(told.lastMetAt, std::nullopt) << "the meeting is to come";
  EXPECT_EQ(told.meetings.back(), 0);
  EXPECT_EQ(told.longestQuiet, (QuietStretch{oldest, 65}));
  EXPECT_EQ(told.currentQuiet, (QuietStretch{oldest + 96, 8}));
  const auto earlier = history(zoe, "2025-06-04T10:00:00Z");
  EXPECT_EQ(earlier.lastMailToAt, std::nullopt) << "not written yet";
  EXPECT_EQ(earlier.lastMailFromAt, instantOf("2023-01-01T10:00:00Z"));
  EXPECT_EQ(history(zoe, "2026-03-10T10:00:00Z").lastMetAt, instantOf("2026-03-09T09:00:00Z"));
}

class Overview : public ContactCounts {
 protected:
  /// A mail each way in each of so many weeks, the last so many weeks ago.
  void exchange(const std::string& address, int weeks, int lastWeeksAgo, int weeksBetween = 1) {
    std::vector<TestMail> mails;
    for (int week = 0; week < weeks; ++week) {
      const auto at = instantOf(now) - std::chrono::weeks{lastWeeksAgo + week * weeksBetween};
      const auto id = address + std::to_string(week);
      mails.push_back({.id = id, .at = formatInternetDateTime(at), .from = address});
      mails.push_back({.id = id + "answer",
                       .at = formatInternetDateTime(at + std::chrono::hours{1}),
                       .from = me,
                       .to = {address},
                       .references = {id}});
    }
    store.import(mails);
  }
  std::vector<ContactSummary> overview() {
    return store.queue.read([](Connection& connection) { return contactOverview(instantOf(now), connection); });
  }
  static Texts namesOf(const std::vector<ContactSummary>& people) {
    Texts names;
    for (const auto& person : people) {
      names.push_back(person.displayName);
    }
    return names;
  }
};

TEST_F(Overview, TellsWhoDriftedAwayByTheirOwnRhythm) {
  exchange("weekly@out.example", 40, 12);
  exchange("rarely@out.example", 7, 12, 8);
  exchange("builder@out.example", 10, 20);
  exchange("friend@out.example", 40, 2);
  exchange("hidden@out.example", 40, 12);
  exchange("support@out.example", 40, 12);
  store.run("INSERT INTO exclusion_rule VALUES ('rule', 'person', '" + keyOf("hidden@out.example") + "', '', NULL)");
  const auto groups = contactGroups(overview());
  EXPECT_THAT(namesOf(groups.driftedAway), ElementsAre("weekly@out.example"));
  EXPECT_THAT(namesOf(groups.inTouch), ElementsAre("friend@out.example", "rarely@out.example"));
  EXPECT_EQ(groups.driftedAway.front().exchangedLastYear, 80);
  EXPECT_EQ(overview().size(), 4U);
}

TEST_F(Overview, TellsWhoWaitsForWhom) {
  exchange(zoe, 3, 2);
  exchange(ben, 3, 2);
  exchange("late@out.example", 2, 30);
  store.import({{.id = "unanswered", .at = "2026-03-01T10:00:00Z", .from = ben},
                {.id = "cold", .at = "2026-03-01T10:00:00Z", .from = "stranger@out.example"},
                {.id = "just now", .at = "2026-03-04T10:00:00Z", .from = me, .to = {"late@out.example"}}});
  const auto groups = contactGroups(overview());
  EXPECT_THAT(namesOf(groups.waitingForUser), ElementsAre(ben));
  EXPECT_THAT(namesOf(groups.waitingForThem), ElementsAre(zoe));
  EXPECT_EQ(groups.waitingForThem.front().waitingSince, instantOf("2026-02-19T13:00:00Z"));
}

} // namespace
} // namespace orvan
