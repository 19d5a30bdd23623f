#include "application/import/ledger/meeting_importer.h"

#include <fstream>

#include "import_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// An event of the user's and these people's.
struct TestEvent {
  std::string uid;
  std::string start;
  Texts guests = {zoe};
  std::string more = {};
  std::string title = "Tea";
};

class ImportedMeetings : public testing::Test {
 protected:
  MeetingReport import(const std::vector<TestEvent>& events, const char* name = "work.ics") {
    const auto file = store.folder.path() / name;
    std::ofstream stream(file);
    stream << "BEGIN:VCALENDAR\nVERSION:2.0\n";
    for (const auto& event : events) {
      stream << "BEGIN:VEVENT\nUID:" << event.uid << "\nDTSTAMP:20260101T000000Z\nSUMMARY:" << event.title
             << "\nDTSTART:" << event.start << "\nORGANIZER:mailto:" << me << '\n'
             << event.more;
      for (const auto& guest : event.guests) {
        stream << "ATTENDEE;PARTSTAT=ACCEPTED:mailto:" << guest << '\n';
      }
      stream << "END:VEVENT\n";
    }
    stream << "END:VCALENDAR\n" << std::flush;
    CalendarSource source(file, importWindow(ImportStore::asOf()), {me});
    auto context = ImportStore::context();
    context.watch = &watch;
    return MeetingImporter(store.queue, context, file).import(source);
  }

  ImportStore store;
  ImportWatch watch;
};

TEST_F(ImportedMeetings, AreUpcomingForEverybodyInvited) {
  const auto report = import({{.uid = "a", .start = "20260306T090000Z"},
                              {.uid = "b", .start = "20260307T090000Z", .guests = {zoe, ben}},
                              {.uid = "c", .start = "20260308T090000Z", .more = "STATUS:CANCELLED\n"}});
  EXPECT_EQ(report.imported, 2);
  EXPECT_THAT(report.skipped, ElementsAre(Pair(CalendarSkip::cancelled, 1)));
  EXPECT_THAT(store.upcoming(), ElementsAre("2026-03-06T09:00:00Z", "2026-03-07T09:00:00Z"));
  EXPECT_THAT(store.upcoming(ben), ElementsAre("2026-03-07T09:00:00Z"));
  EXPECT_THAT(store.texts("SELECT direction || ' ' || kind || ' ' || conversation_kind FROM interaction "
                          "JOIN source_event ON source_event.id = source_event_id ORDER BY occurred_at"),
              ElementsAre("mutual meeting direct", "mutual meeting group"));
  EXPECT_THAT(store.texts("SELECT source_account_id FROM source_progress_projection "
                          "WHERE freshness_state = 'current' AND operation = 'import_calendar'"),
              store.texts("SELECT DISTINCT source_account_id FROM source_event"));
}

TEST_F(ImportedMeetings, FollowTheirCalendarWhenItChanges) {
  import({{.uid = "moved", .start = "20260306T090000Z"},
          {.uid = "cancelled", .start = "20260307T090000Z"},
          {.uid = "deleted", .start = "20260308T090000Z"},
          {.uid = "smaller", .start = "20260309T090000Z", .guests = {zoe, ben}}});
  const auto report = import({{.uid = "moved", .start = "20260310T090000Z"},
                              {.uid = "cancelled", .start = "20260307T090000Z", .more = "STATUS:CANCELLED\n"},
                              {.uid = "smaller", .start = "20260309T090000Z"}});
  EXPECT_EQ(report.known, 2);
  EXPECT_EQ(report.withdrawn, 2);
  EXPECT_THAT(store.upcoming(), ElementsAre("2026-03-09T09:00:00Z", "2026-03-10T09:00:00Z"));
  EXPECT_THAT(store.people(), ElementsAre(zoe)) << "Ben is no longer invited";
  EXPECT_THAT(store.texts("SELECT DISTINCT conversation_kind FROM source_event"), ElementsAre("direct"));
}

TEST_F(ImportedMeetings, TakeTheirPlaceAndTitleFromTheCalendarAsItIsNow) {
  const auto places = [this] { return store.texts("SELECT location || is_all_day FROM meeting_text ORDER BY 1"); };
  const std::string attic = "LOCATION:The\\nattic\n";
  import({{.uid = "a", .start = "20260306T090000Z", .more = attic},
          {.uid = "b", .start = "20260307T090000Z", .more = attic},
          {.uid = "c", .start = "20260308T090000Z"},
          {.uid = "d", .start = "20260309"}});
  EXPECT_THAT(places(), ElementsAre("1", "The attic0", "The attic0"));
  import({{.uid = "a", .start = "20260306T090000Z", .title = "Supper"},
          {.uid = "c", .start = "20260308T090000Z", .more = "LOCATION:Café Sol\n"}});
  EXPECT_THAT(places(), ElementsAre("Café Sol0")) << "one lost it, two were withdrawn";
  EXPECT_THAT(store.texts("SELECT subject FROM thread_text JOIN interaction USING (thread_id) ORDER BY occurred_at"),
              ElementsAre("Supper", "Tea"));
}

TEST_F(ImportedMeetings, GoWithTheLastCalendarThatListsThem) {
  const TestEvent both{.uid = "a", .start = "20260306T090000Z"};
  import({both, {.uid = "b", .start = "20260307T090000Z"}});
  EXPECT_EQ(import({both}, "home.ics").known, 1);
  EXPECT_EQ(import({}, "home.ics").withdrawn, 0) << "still in the first one";
  import({both}, "home.ics");
  EXPECT_EQ(import({}).withdrawn, 1);
  EXPECT_THAT(store.upcoming(), ElementsAre("2026-03-06T09:00:00Z"));
  EXPECT_EQ(import({}, "home.ics").withdrawn, 1);
  EXPECT_THAT(store.upcoming(), IsEmpty());
}

TEST_F(ImportedMeetings, OfTheUserAloneAreCountedWhicheverAddressesTheReaderKnew) {
  store.import({}, 1, {"mira@work.example"});
  const auto report = import({{.uid = "a", .start = "20260306T090000Z", .guests = {"mira@work.example"}},
                              {.uid = "b", .start = "20260306T090000Z", .guests = {}}});
  EXPECT_EQ(report.meetings, 0);
  EXPECT_THAT(report.skipped, ElementsAre(Pair(CalendarSkip::nobodyElse, 2)));
}

TEST_F(ImportedMeetings, OutsideTheWindowAreLeftAsTheyWere) {
  import({{.uid = "old", .start = "20250101T090000Z"}});
  store.run("UPDATE interaction SET occurred_at = '2020-01-01T09:00:00Z'");
  EXPECT_EQ(import({}).withdrawn, 0) << "a calendar that drops its past takes no history away";
  EXPECT_THAT(store.people(), ElementsAre(zoe));
}

TEST_F(ImportedMeetings, AreNotWithdrawnByAnImportThatIsStopped) {
  import({{.uid = "a", .start = "20260306T090000Z"}});
  EXPECT_EQ(watch.progress(), (ImportProgress{1, 1, {.read = 1, .total = 1}}));
  watch.requestStop();
  EXPECT_TRUE(import({{.uid = "b", .start = "20260307T090000Z"}}).isStopped);
  EXPECT_THAT(store.upcoming(), ElementsAre("2026-03-06T09:00:00Z"));
  EXPECT_THAT(store.freshness(), ElementsAre("stale"));
}

} // namespace
} // namespace orvan
