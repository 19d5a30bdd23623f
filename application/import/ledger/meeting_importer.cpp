#include "application/import/ledger/meeting_importer.h"

#include <algorithm>
#include <exception>
#include <set>
#include <utility>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "application/import/ledger/bounded_text.h"
#include "application/import/ledger/contact_ledger.h"
#include "application/import/ledger/forgotten_people.h"
#include "application/import/ledger/history_rows.h"
#include "application/import/ledger/own_addresses.h"
#include "application/import/ledger/people_ledger.h"
#include "application/import/ledger/question_ledger.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/ledger/stored_interactions.h"

namespace orvan {
namespace {

constexpr std::int64_t daysBefore = std::int64_t{2} * 365;
constexpr std::int64_t daysAfter = 365;
constexpr std::size_t meetingsPerBatch = 4096;
constexpr std::size_t calendarNameLength = 13;
constexpr std::size_t mostAttendees = 200;

std::int64_t numberOfThisImport(const std::string& calendar, Connection& connection) {
  return connection
             .fetchOptionalInteger("SELECT COALESCE(MAX(seen_in), 0) FROM calendar_entry WHERE calendar = ?", calendar)
             .value_or(0) +
         1;
}

struct MeetingBatch {
  std::vector<CalendarMeeting> meetings;
  /// Set when the source failed after these.
  std::exception_ptr failure;
};

MeetingBatch readBatch(CalendarSource& source, ImportWatch& watch) {
  MeetingBatch batch;
  try {
    while (batch.meetings.size() < meetingsPerBatch && !watch.isStopRequested()) {
      const auto events = source.eventsRead();
      watch.tellRead(static_cast<std::int64_t>(events), {events, source.eventCount()});
      auto meeting = source.next();
      if (!meeting) {
        break;
      }
      batch.meetings.push_back(std::move(*meeting));
    }
  } catch (...) {
    batch.failure = std::current_exception();
  }
  return batch;
}

InteractionRow rowOf(const CalendarMeeting& meeting, std::vector<std::string> participants,
                     const ForgottenPeople& forgotten) {
  const auto principal = participants.front();
  auto threadID = clusteredID(principal, meeting.uid);
  // A line break parts the two texts: neither can hold one.
  auto id = clusteredID(principal, meeting.uid + "\n" + meeting.recurrenceID);
  const bool isGroup = participants.size() > 1;
  forgotten.leaveOut(participants);
  return {std::move(id),
          std::move(threadID),
          std::nullopt,
          "mutual",
          "meeting",
          isGroup ? "group" : "direct",
          formatInternetDateTime(meeting.startsAt),
          std::move(participants),
          {},
          leadingCharacters(meeting.location, mostPlaceCharacters),
          meeting.isAllDay};
}

/// Marks the meeting as seen in this import; whether it was there before.
bool markSeen(const std::string& interactionID, const std::string& calendar, std::int64_t import,
              Connection& connection) {
  const bool isKnown =
      connection.fetchOptionalInteger("SELECT 1 FROM calendar_entry WHERE interaction_id = ?", interactionID)
          .has_value();
  connection.execute(R"sql(
INSERT INTO calendar_entry (interaction_id, calendar, seen_in)
VALUES (?, ?, ?)
ON CONFLICT(interaction_id, calendar) DO UPDATE SET seen_in = max(seen_in, excluded.seen_in)
)sql",
                     interactionID, calendar, import);
  return isKnown;
}

std::vector<std::string> notSeenIn(std::int64_t import, const std::string& calendar, CalendarWindow window,
                                   Connection& connection) {
  std::vector<std::string> gone;
  auto rows =
      connection.query(R"sql(
SELECT entry.interaction_id
FROM calendar_entry entry
JOIN interaction meeting ON meeting.id = entry.interaction_id
WHERE entry.calendar = ? AND entry.seen_in < ? AND meeting.occurred_at >= ? AND meeting.occurred_at < ?
)sql",
                       calendar, import, formatInternetDateTime(window.from), formatInternetDateTime(window.to));
  while (rows.next()) {
    gone.emplace_back(rows.text(Column{0}));
  }
  return gone;
}

/// The meeting itself goes with the last calendar that lists it; whether it did.
bool withdraw(const std::string& interactionID, const std::string& calendar, ContactLedger& contact,
              Connection& connection) {
  connection.execute("DELETE FROM calendar_entry WHERE interaction_id = ? AND calendar = ?", interactionID, calendar);
  if (connection.fetchOptionalInteger("SELECT 1 FROM calendar_entry WHERE interaction_id = ?", interactionID)) {
    return false;
  }
  if (const auto meeting = storedInteraction(interactionID, connection)) {
    contact.remove(*meeting);
    deleteInteraction(*meeting, connection);
  }
  return true;
}

/// One import of one calendar, from its start to its end.
class CalendarImport {
 public:
  CalendarImport(std::string calendar, std::string now) : calendar_(std::move(calendar)), now_(std::move(now)) {}

  void begin(const ImportContext& context, Connection& connection) {
    const auto& ownAddresses = context.ownAddresses;
    account_ = context.account ? *context.account : calendarAccountOf(ownAddresses.front(), connection);
    recordImportStarted(account_, now_, connection);
    ownAddresses_ = rememberOwnAddresses(ownAddresses, now_, connection);
    noteReadingWithOwnAddresses(connection);
    number_ = numberOfThisImport(calendar_, connection);
  }

  void write(const std::vector<CalendarMeeting>& meetings, MeetingReport& report, Connection& connection) {
    PeopleLedger people;
    HistoryRows rows;
    const auto forgotten = ForgottenPeople::in(connection);
    for (const auto& meeting : meetings) {
      auto participants = noteParticipants(meeting, people);
      if (participants.empty()) { // The source knew fewer of the user's addresses.
        ++report.skipped[CalendarSkip::nobodyElse];
        continue;
      }
      auto row = rowOf(meeting, std::move(participants), forgotten);
      if (row.participantIdentityIDs.empty()) {
        ++report.forgotten;
        continue;
      }
      const bool isKnown = markSeen(row.id, calendar_, number_, connection);
      if (isKnown) {
        forgetParticipants(row.id, connection);
      }
      contact_.add(row);
      ++report.meetings;
      ++(isKnown ? report.known : report.imported);
      rows.addThread(row.threadID, "calendar", leadingCharacters(meeting.summary, mostSubjectCharacters));
      rows.add(std::move(row));
    }
    people.write(connection, now_);
    rows.write(account_.id, now_, connection);
    reconsiderQuestions(contact_.write(connection), connection);
  }

  void end(CalendarWindow window, MeetingReport& report, Connection& connection) {
    for (const auto& interactionID : notSeenIn(number_, calendar_, window, connection)) {
      report.withdrawn += withdraw(interactionID, calendar_, contact_, connection) ? 1 : 0;
    }
    contact_.write(connection);
    recordImportSucceeded(account_, now_, connection);
  }

 private:
  /// Whoever is still invited is written again.
  void forgetParticipants(const std::string& interactionID, Connection& connection) {
    if (const auto known = storedInteraction(interactionID, connection)) {
      contact_.remove(*known);
      deleteParticipants(*known, connection);
    }
  }

  /// Whom the user has met is no stranger.
  void reconsiderQuestions(const std::vector<std::string>& identityIDs, Connection& connection) const {
    QuestionLedger questions;
    questions.reconsiderPeople(identityIDs);
    questions.settle(now_, connection);
  }

  std::vector<std::string> noteParticipants(const CalendarMeeting& meeting, PeopleLedger& people) const {
    std::vector<std::string> participants;
    for (const auto& person : meeting.people) {
      if (participants.size() < mostAttendees && !ownAddresses_.contains(person.address)) {
        participants.push_back(people.note(person.address, person.displayName, NameSource::others));
      }
    }
    return participants;
  }

  SourceAccount account_;
  std::string calendar_;
  std::string now_;
  std::set<std::string> ownAddresses_;
  std::int64_t number_ = 0;
  ContactLedger contact_;
};

} // namespace

CalendarWindow importWindow(Instant now) {
  return {instantBySubtractingDays(now, daysBefore), instantByAddingDays(now, daysAfter)};
}

MeetingImporter::MeetingImporter(DatabaseQueue& store, ImportContext context, const std::filesystem::path& file)
    : store_(store),
      context_(std::move(context)),
      calendar_(stableID(std::filesystem::weakly_canonical(file).native(), calendarNameLength)) {}

MeetingReport MeetingImporter::import(CalendarSource& source) {
  CalendarImport import(calendar_, formatInternetDateTime(context_.now));
  store_.write([&](Connection& connection) { import.begin(context_, connection); });

  MeetingReport report;
  ImportWatch unwatched;
  auto& watch = context_.watch == nullptr ? unwatched : *context_.watch;
  watch.tellStored(0);
  for (auto batch = readBatch(source, watch); !batch.meetings.empty() || batch.failure;
       batch = readBatch(source, watch)) {
    store_.write([&](Connection& connection) { import.write(batch.meetings, report, connection); });
    watch.tellStored(static_cast<std::int64_t>(source.eventsRead()));
    if (batch.failure) {
      std::rethrow_exception(batch.failure);
    }
  }
  report.isStopped = watch.isStopRequested();
  if (!report.isStopped) {
    store_.write([&](Connection& connection) { import.end(importWindow(context_.now), report, connection); });
  }
  report.events = static_cast<std::int64_t>(source.eventCount());
  for (const auto& [reason, count] : source.skipped()) {
    report.skipped[reason] += count;
  }
  report.notices = source.notices();
  return report;
}

} // namespace orvan
