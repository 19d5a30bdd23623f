#include "application/import/calendar/calendar_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "OrvanPlatform/internet_date_time.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

/// What a file comes to. Of a start in UTC a test shows only month, day, hour and minute: "03-04T09:00", followed by
/// the occurrence's name where the event repeats and that is another time: "07-09T14:00 = 07-02T08:00".
struct Outcome {
  std::vector<std::string> starts;
  std::vector<CalendarMeeting> meetings;
  std::map<CalendarSkip, std::size_t> skipped;
  std::map<CalendarNotice, std::size_t> notices;
  std::size_t eventCount = 0;
};

Instant instantOf(std::string_view text) {
  return parseInternetDateTime(text).value();
}

/// Reads 2026 from a file of these exact bytes, as a user in Lisbon.
Outcome readFile(std::string_view bytes) {
  static const ScratchFolder folder;
  const auto file = folder.path() / "calendar.ics";
  std::ofstream{file, std::ios::binary} << bytes;
  setenv("TZ", "Europe/Lisbon", 1);
  CalendarSource source{file,
                        {.from = instantOf("2026-01-01T00:00:00Z"), .to = instantOf("2027-01-01T00:00:00Z")},
                        {"robin@orvan.example"}};
  Outcome outcome;
  while (auto meeting = source.next()) {
    const auto start = formatInternetDateTime(meeting->startsAt);
    const auto& name = meeting->recurrenceID;
    outcome.starts.push_back(start.substr(5, 11) +
                             (name.empty() || name == start ? std::string{} : " = " + name.substr(5, 11)));
    outcome.meetings.push_back(*std::move(meeting));
  }
  outcome.skipped = source.skipped();
  outcome.notices = source.notices();
  outcome.eventCount = source.eventCount();
  std::filesystem::remove(file);
  return outcome;
}

/// Lines in a calendar, with the line ends of the format.
Outcome readCalendar(const std::string& lines) {
  std::string bytes = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
  for (const char c : lines + "END:VCALENDAR\n") {
    bytes += c == '\n' ? std::string{"\r\n"} : std::string{c};
  }
  return readFile(bytes);
}

/// An event that Ines is invited to, with these lines in place of anything else.
std::string event(const std::string& lines, const std::string& uid = "standup") {
  return "BEGIN:VEVENT\nUID:" + uid + "\nATTENDEE:mailto:ines@pinho.example\n" + lines + "END:VEVENT\n";
}

TEST(CalendarPeople, AreTheOrganiserAndTheInvitedOnceEach) {
  const auto outcome = readCalendar(
      "BEGIN:VEVENT\nUID:a\nDTSTART:20260304T090000Z\nSUMMARY:Plans\\, and\\nmore \xff plans\n"
      "ORGANIZER:MAILTO:Robin@Orvan.example\n"
      "ATTENDEE;CN=\"Pinho,^nIn\xc3\xaas ^'Ni^^ni^'\":mailto:Ines@Pinho.example\n"
      "ATTENDEE;CN=ines@pinho.example:mailto:ines@pinho.example\n"
      "ATTENDEE;CN=robin@orvan.example;PARTSTAT=ACCEPTED:mailto:robin@orvan.example\n"
      "ATTENDEE;CN=Kofi;EMAIL='KOFI@v\xc3\xb6lta.exa\n mple':urn:uuid:0a0b\n"
      "ATTENDEE;CUTYPE=ROOM;CN=Attic:mailto:attic@pinho.example\n"
      "ATTENDEE;PARTSTAT=DECLINED:mailto:sven@fjord.example\n"
      "ATTENDEE:invalid:nomail\nEND:VEVENT\n");
  EXPECT_THAT(outcome.meetings, ElementsAre(CalendarMeeting{.uid = "a",
                                                            .recurrenceID = "",
                                                            .startsAt = instantOf("2026-03-04T09:00:00Z"),
                                                            .people = {{"", "robin@orvan.example"},
                                                                       {"Pinho, Inês \"Ni^ni\"", "ines@pinho.example"},
                                                                       {"Kofi", "kofi@xn--vlta-5qa.example"}},
                                                            .summary = "Plans, and more \ufffd plans"}));
}

TEST(CalendarStatus, LeavesOutWhatWasCancelledOrDeclinedOrConcernsTheUserAlone) {
  const std::string own = "DTSTART:20260304T090000Z\nORGANIZER:mailto:robin@orvan.example\n";
  const auto outcome = readCalendar(
      event("DTSTART:20260304T090000Z\nSTATUS:CANCELLED\n", "off") +
      event("DTSTART:20260304T090000Z\nSTATUS:TENTATIVE\n", "on") +
      event("DTSTART:20260305T090000Z\nATTENDEE;PARTSTAT=DECLINED:mailto:ROBIN@orvan.example\n", "no") +
      "BEGIN:VEVENT\nUID:alone\n" + own + "END:VEVENT\nBEGIN:VEVENT\nUID:turned-down\n" + own +
      "ATTENDEE;PARTSTAT=DECLINED:mailto:ines@pinho.example\nEND:VEVENT\n" +
      "END:VCALENDAR\nBEGIN:VCALENDAR\nMETHOD:CANCEL\n" + event("DTSTART:20260306T090000Z\n", "withdrawn"));
  EXPECT_THAT(outcome.starts, ElementsAre("03-04T09:00"));
  EXPECT_THAT(outcome.skipped, UnorderedElementsAre(Pair(CalendarSkip::cancelled, 2), Pair(CalendarSkip::declined, 1),
                                                    Pair(CalendarSkip::nobodyElse, 2)));
  EXPECT_EQ(outcome.eventCount, 6U);
}

TEST(CalendarTime, FollowsTheZoneThatTheFileDefinesBeforeAnyOfThatName) {
  const auto outcome = readCalendar(event("DTSTART;TZID=Europe/Berlin:20260304T090000\n", "winter") +
                                    event("DTSTART;TZID=Europe/Berlin:20260704T090000\n", "summer") +
                                    "BEGIN:VTIMEZONE\nTZID:Europe/Berlin\n"
                                    "BEGIN:STANDARD\nDTSTART:20001029T030000\nRRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=10\n"
                                    "TZOFFSETFROM:+0700\nTZOFFSETTO:+0600\nEND:STANDARD\n"
                                    "BEGIN:DAYLIGHT\nDTSTART:20000326T020000\nRRULE:FREQ=YEARLY;BYDAY=-1SU;BYMONTH=3\n"
                                    "TZOFFSETFROM:+0600\nTZOFFSETTO:+0700\nEND:DAYLIGHT\nEND:VTIMEZONE\n");
  EXPECT_THAT(outcome.starts, ElementsAre("03-04T03:00", "07-04T02:00"));
  const auto endless = readCalendar(
      "BEGIN:VTIMEZONE\nTZID:Europe/Berlin\nBEGIN:STANDARD\nDTSTART:19700101T000000\nRRULE:FREQ=SECONDLY\n"
      "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nEND:STANDARD\nEND:VTIMEZONE\n" +
      event("DTSTART;TZID=Europe/Berlin:20260304T090000\n"));
  EXPECT_THAT(endless.starts, ElementsAre("03-04T08:00")) << "a definition that would take forever is passed over";
}

TEST(CalendarTime, KnowsZonesByTheNamesThatCalendarsGiveThem) {
  const auto outcome = readCalendar(
      event("DTSTART;TZID=America/New_York:20260704T090000\n", "plain") +
      event("DTSTART;TZID=\"/citadel.org/20250101_1/America/Argentina/Salta\":20260704T090000\n", "prefixed") +
      event("DTSTART;TZID=\"W. Europe Standard Time\":20260704T090000\n", "windows") +
      event("DTSTART:20260704T090000\n", "floating") + event("DTSTART;VALUE=DATE:20260704\n", "all-day") +
      event("DTSTART;TZID=Customized Time Zone:20260704T090000\n", "unknown") +
      event("DTSTART;TZID=Europe/Berlin:20260329T023000\n", "in the skipped hour") +
      event("DTSTART;TZID=Europe/Berlin:20261025T023000\n", "in the hour that comes twice"));
  EXPECT_THAT(outcome.starts, ElementsAre("07-04T13:00", "07-04T12:00", "07-04T07:00", "07-04T08:00", "07-03T23:00",
                                          "07-04T08:00", "03-29T01:30", "10-25T00:30"));
  EXPECT_THAT(outcome.notices, ElementsAre(Pair(CalendarNotice::unknownTimeZone, 1)));
}

const std::string daily =
    event("DTSTART;TZID=Europe/Lisbon:20260701T090000\nRRULE:FREQ=DAILY;COUNT=4\nSUMMARY:Stand-up\n");

TEST(CalendarRepetition, IsListedWithItsExceptionsAndChanges) {
  struct {
    const char* what;
    std::string lines;
    std::vector<std::string> starts;
  } const cases[]{
      {"the wall clock's time stays through the change of the clocks",
       event("DTSTART;TZID=Europe/Berlin:20260323T090000\nRRULE:FREQ=WEEKLY;UNTIL=20260406T070000Z\n"),
       {"03-23T08:00", "03-30T07:00", "04-06T07:00"}},
      {"an end without a time includes its day",
       event("DTSTART:20260302T090000Z\nRRULE:FREQ=DAILY;UNTIL=20260304\n"),
       {"03-02T09:00", "03-03T09:00", "03-04T09:00"}},
      {"and so does the end of days",
       event("DTSTART;VALUE=DATE:20260302\nRRULE:FREQ=DAILY;UNTIL=20260303T000000Z\n"),
       {"03-02T00:00", "03-03T00:00"}},
      {"without an end it is bounded by the window",
       event("DTSTART:19900101T090000Z\nRRULE:FREQ=MONTHLY;INTERVAL=6\n"),
       {"01-01T09:00", "07-01T09:00"}},
      {"single dates are added and excluded",
       event("DTSTART;TZID=Europe/Lisbon:20260705T090000\nRRULE:FREQ=DAILY;COUNT=4\n"
             "EXDATE;TZID=Europe/Lisbon:20260705T090000,20260706T090000\nEXDATE;VALUE=DATE:20260707\n"
             "RDATE;VALUE=PERIOD:20260801T090000Z/PT1H,20260708T080000Z/PT1H\n"),
       {"07-08T08:00", "08-01T09:00"}},
      {"occurrences without a zone are named alike wherever the user is",
       event("DTSTART;VALUE=DATE:20260704\nRRULE:FREQ=DAILY;COUNT=1\n", "day") +
           event("DTSTART:20260704T090000\nRRULE:FREQ=DAILY;COUNT=1\n", "floating"),
       {"07-03T23:00 = 07-04T00:00", "07-04T08:00 = 07-04T09:00"}},
      {"one occurrence is moved, one cancelled and one declined",
       event("RECURRENCE-ID:20260702T080000Z\nDTSTART;TZID=Europe/Lisbon:20260709T150000\n") + daily +
           event("RECURRENCE-ID;VALUE=DATE:20260703\nSTATUS:CANCELLED\n") +
           event("RECURRENCE-ID;TZID=Europe/Lisbon:20260704T090000\nDTSTART;TZID=Europe/Lisbon:20260704T090000\n"
                 "ATTENDEE;PARTSTAT=DECLINED:mailto:robin@orvan.example\n"),
       {"07-01T08:00", "07-09T14:00 = 07-02T08:00"}},
      {"a change to an occurrence and those after it reaches until the next one",
       daily + event("RECURRENCE-ID;RANGE=THISANDFUTURE:20260702T080000Z\nDTSTART:20260702T100000Z\n") +
           event("RECURRENCE-ID;RANGE=THISANDFUTURE:20260704T080000Z\nDTSTART:20260704T060000Z\n"),
       {"07-01T08:00", "07-02T10:00 = 07-02T08:00", "07-03T10:00 = 07-03T08:00", "07-04T06:00 = 07-04T08:00"}},
      {"changes bring occurrences into the window",
       event("DTSTART:20270101T090000Z\nRRULE:FREQ=DAILY\n") +
           event("RECURRENCE-ID;RANGE=THISANDFUTURE:20270110T090000Z\nDTSTART:20261230T090000Z\n"),
       {"12-30T09:00 = 01-10T09:00", "12-31T09:00 = 01-11T09:00"}},
      {"a change without its event stands for itself",
       event("RECURRENCE-ID:20260702T080000Z\nDTSTART:20260702T090000Z\n"),
       {"07-02T09:00 = 07-02T08:00"}}};
  for (const auto& [what, lines, starts] : cases) {
    EXPECT_EQ(readCalendar(lines).starts, starts) << what;
  }
}

TEST(CalendarRepetition, ThatCannotBeListedIsSkippedAndThatCannotBeReadIsTakenOnce) {
  const auto outcome =
      readCalendar(event("DTSTART:20260304T090000Z\nRRULE:FREQ=SECONDLY\n", "a") +
                   event("DTSTART:20200304T090000Z\nRRULE:FREQ=HOURLY;BYMONTH=2;BYMONTHDAY=30\n", "b") +
                   event("DTSTART:20260304T090000Z\nRRULE:FREQ=DAILY;BYSECOND=0,1,2,3,4,5,6,7,8,9;BYMINUTE="
                         "0,1,2,3,4,5,6,7,8,9;BYHOUR=0,1,2,3,4,5,6,7,8,9\n",
                         "c") +
                   event("DTSTART:20260304T090000Z\nRRULE:FREQ=WHENEVER\n", "d") +
                   event("DTSTART:20260305T090000Z\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30\n", "e"));
  EXPECT_THAT(outcome.starts, ElementsAre("03-04T09:00", "03-05T09:00"));
  EXPECT_THAT(outcome.skipped, ElementsAre(Pair(CalendarSkip::repeatsTooOften, 3)));
  EXPECT_THAT(outcome.notices, ElementsAre(Pair(CalendarNotice::unreadableRecurrence, 2)));
}

TEST(CalendarRevisions, KeepTheHighestSequenceThenTheLatestWritingThenTheLastInTheFile) {
  const auto outcome = readCalendar(event("SEQUENCE:10\nDTSTAMP:20260101T000000Z\nDTSTART:20260701T090000Z\n") +
                                    event("SEQUENCE:10\nDTSTAMP:20260102T000000Z\nDTSTART:20260702T090000Z\n") +
                                    event("SEQUENCE:10\nDTSTAMP:20260102T000000Z\nDTSTART:20260703T090000Z\n") +
                                    event("SEQUENCE:10\nDTSTAMP:20260101T000000Z\nDTSTART:20260704T090000Z\n") +
                                    event("SEQUENCE:2\nDTSTAMP:20260103T000000Z\nDTSTART:20260705T090000Z\n"));
  EXPECT_THAT(outcome.starts, ElementsAre("07-03T09:00"));
  EXPECT_THAT(outcome.skipped, ElementsAre(Pair(CalendarSkip::superseded, 4)));
  const auto cancelled = readCalendar(daily + event("RECURRENCE-ID:20260702T080000Z\nDTSTART:20260709T090000Z\n") +
                                      event("SEQUENCE:1\nSTATUS:CANCELLED\nDTSTART:20260701T080000Z\n"));
  EXPECT_THAT(cancelled.starts, IsEmpty()) << "changed occurrences go with their event";
}

TEST(CalendarDamage, IsCountedEventByEventAndSparesTheRest) {
  const auto outcome = readCalendar(
      event("", "no start") + event("DTSTART:tomorrow\n", "odd start") +
      event("DTSTART:20261399T990000Z\n", "impossible start") + event("DTSTART:20260304T090000Z\n", "") +
      event("DTSTART:20240304T090000Z\n", "old") +
      event("DTSTART:20260304T090000Z\nSUMMARY:" + std::string(300'000, 'x') + "\n", "long") +
      "BEGIN:VEVENT\nUID:unclosed\nDTSTART:20260304T090000Z\nBEGIN:VALARM\nDTSTART:20260101T000000Z\n" +
      event("BEGIN:VALARM\nUID:alarm\nDTSTART:19990101T000000Z\nEND:VALARM\nDTSTART:20260305T090000Z\nDESCRIPTION:" +
                std::string(300'000, 'x') + "\n",
            "good"));
  EXPECT_THAT(outcome.starts, ElementsAre("03-05T09:00"));
  EXPECT_EQ(outcome.eventCount, 8U);
  EXPECT_THAT(outcome.skipped,
              UnorderedElementsAre(Pair(CalendarSkip::missingStart, 3), Pair(CalendarSkip::missingIdentifier, 1),
                                   Pair(CalendarSkip::outsideWindow, 1), Pair(CalendarSkip::tooLarge, 1),
                                   Pair(CalendarSkip::unreadable, 1)));
}

TEST(CalendarDamage, OfAWholeFileIsAnErrorOfItsOwn) {
  EXPECT_EQ(faultOf([] { readFile(""); }), CalendarSourceError::notACalendar);
  EXPECT_EQ(faultOf([] { readFile(std::string(100'000, '\xa5')); }), CalendarSourceError::notACalendar);
  for (const char* file : {"/nowhere/calendar.ics", "/tmp", "/proc/self/mem"}) {
    EXPECT_EQ(faultOf([&] { CalendarSource{file, {}, {}}; }), CalendarSourceError::cannotRead) << file;
  }
}

TEST(CalendarDamage, OfEveryByteLeavesTheReaderStanding) {
  const std::string whole =
      "\xef\xbb\xbf"
      "BEGIN:VCALENDAR\n" +
      daily + event("RECURRENCE-ID;RANGE=THISANDFUTURE:20260702T080000Z\nDTSTART:20260702T100000Z\n") +
      "END:VCALENDAR\n";
  EXPECT_THAT(readFile(whole).starts, SizeIs(4)) << "a byte order mark and bare line feeds do no harm";
  for (std::size_t at = 20; at < whole.size(); ++at) {
    for (const char damage : {'\0', '\n', ';', ':', '9', '\xff'}) {
      auto damaged = whole;
      damaged[at] = damage;
      EXPECT_LE(readFile(damaged).eventCount, 2U);
    }
  }
}

} // namespace
} // namespace orvan
