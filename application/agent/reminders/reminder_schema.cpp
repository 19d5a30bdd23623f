#include "application/agent/reminders/reminder_schema.h"

#include <array>
#include <cstdint>
#include <string>

#include "OrvanPlatform/error.h"
#include "application/agent/reminders/reminder_file_error.h"

namespace orvan {
namespace {

/// "Orvr".
constexpr std::int64_t ownApplication = 0x4f727672;

constexpr const char* firstTables = R"sql(
CREATE TABLE application (
  number INTEGER NOT NULL PRIMARY KEY,
  identifier TEXT NOT NULL UNIQUE,
  display_name TEXT NOT NULL,
  status TEXT NOT NULL
) STRICT;

-- What takes one popup: one reminder, or many that came due at once (kind 'single' or 'group'). While its state is
-- 'presenting', the service may have been asked to show it or not; 'delivered' is final. The popup and its service are
-- NULL where no popup is known to stand. Moments are microseconds since 1970.
CREATE TABLE presentation (
  number INTEGER NOT NULL PRIMARY KEY,
  application INTEGER NOT NULL REFERENCES application,
  kind TEXT NOT NULL,
  state TEXT NOT NULL,
  at INTEGER NOT NULL,
  service TEXT,
  popup INTEGER
) STRICT;
CREATE INDEX presentation_of_popup ON presentation (popup) WHERE popup IS NOT NULL;
CREATE INDEX presentation_in_state ON presentation (number) WHERE state = 'presenting';

-- A request is pending until it has a presentation. One that was shown and is added again is there twice. The date is
-- a reading of the wall clock, in the terms of the user's calendar.
CREATE TABLE reminder (
  number INTEGER NOT NULL PRIMARY KEY,
  application INTEGER NOT NULL REFERENCES application,
  identifier TEXT NOT NULL,
  title TEXT NOT NULL,
  user_info TEXT NOT NULL,
  year INTEGER NOT NULL,
  month INTEGER NOT NULL,
  day INTEGER NOT NULL,
  hour INTEGER NOT NULL,
  minute INTEGER NOT NULL,
  second INTEGER NOT NULL,
  presentation INTEGER REFERENCES presentation
) STRICT;
CREATE UNIQUE INDEX pending_reminder ON reminder (application, identifier) WHERE presentation IS NULL;
CREATE UNIQUE INDEX shown_reminder ON reminder (application, identifier) WHERE presentation IS NOT NULL;
CREATE INDEX reminder_of_presentation ON reminder (presentation) WHERE presentation IS NOT NULL;

CREATE TABLE setting (
  name TEXT NOT NULL PRIMARY KEY,
  value TEXT NOT NULL
) STRICT, WITHOUT ROWID;
)sql";

/// Each leads from the version that is its place to the next. One that was published stays as it is.
constexpr std::array steps{firstTables};

void makeStepsFrom(Connection& connection, std::int64_t version) {
  for (auto step = static_cast<std::size_t>(version); step < steps.size(); ++step) {
    connection.executeScript(steps.at(step));
  }
  connection.executeScript("PRAGMA user_version = " + std::to_string(steps.size()));
}

class ReminderSchemaCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.reminder-schema"; }
  std::string message(int /*code*/) const override { return "notOurs"; }
};

} // namespace

std::error_code make_error_code(ReminderSchemaError error) noexcept {
  static const ReminderSchemaCategory category;
  return {static_cast<int>(error), category};
}

void createReminderSchema(Connection& connection) {
  connection.executeScript("PRAGMA application_id = " + std::to_string(ownApplication));
  makeStepsFrom(connection, 0);
}

void bringReminderSchemaForward(Connection& connection) {
  const auto application = connection.fetchOptionalInteger("PRAGMA application_id").value_or(0);
  const auto version = connection.fetchOptionalInteger("PRAGMA user_version").value_or(0);
  if (application != ownApplication || version <= 0) {
    throw Error(ReminderSchemaError::notOurs, "asking whose reminders they are");
  }
  if (version > static_cast<std::int64_t>(steps.size())) {
    throw Error(ReminderFileError::newer, "asking for the version of the reminders");
  }
  if (version < static_cast<std::int64_t>(steps.size())) {
    makeStepsFrom(connection, version);
  }
}

} // namespace orvan
