#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "OrvanStore/database_queue.h"
#include "application/import/calendar/calendar_source.h"
#include "application/import/ledger/mail_importer.h"

namespace orvan {

/// What the import of a calendar found. `meetings` are the occurrences listed within the window:
/// meetings == imported + known.
struct MeetingReport {
  std::int64_t events = 0;
  std::int64_t meetings = 0;
  std::int64_t imported = 0;
  std::int64_t known = 0;
  /// Imported from this calendar before, and no longer in it or in any other.
  std::int64_t withdrawn = 0;
  /// With nobody but people whom the user has had forgotten.
  std::int64_t forgotten = 0;
  std::map<CalendarSkip, std::size_t> skipped;
  std::map<CalendarNotice, std::size_t> notices;
  /// The import was stopped before the end of the calendar, and the rest was left for the next.
  bool isStopped = false;
};

/// The occurrences that are taken from a calendar: from two years before the import to one year after it.
CalendarWindow importWindow(Instant now);

/// Brings meetings into the canonical tables. A calendar can be imported again when it has changed: meetings that moved
/// take their new time, title and place, and those that are gone from it (cancelled, declined or deleted) are withdrawn
/// unless another calendar lists them.
class MeetingImporter {
 public:
  /// `file` only names the calendar, so that its earlier import is found again.
  MeetingImporter(DatabaseQueue& store, ImportContext context, const std::filesystem::path& file);

  /// Reads `source`, which lists the meetings of importWindow(now), to its end. When the source fails, what came before
  /// is kept, nothing is withdrawn, and the source's error is thrown. The same without an error when the context's
  /// watch asks for a stop.
  MeetingReport import(CalendarSource& source);

 private:
  DatabaseQueue& store_;
  ImportContext context_;
  std::string calendar_;
};

} // namespace orvan
