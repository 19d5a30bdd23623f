#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "OrvanPlatform/internet_date_time.h"
#include "application/import/calendar/calendar_source.h"

namespace orvan {
namespace {

TEST(SampleCalendar, HoldsTheMeetingsThatItsAuthorPromises) {
  const auto folder = std::filesystem::temp_directory_path() / ("orvan-sample-" + std::to_string(getpid()));
  const std::string command = std::string{ORVAN_MAKE_SAMPLE} + " " + folder.string() + " --now 2026-03-04T09:15:00Z";
  ASSERT_EQ(std::system(command.c_str()), 0); // NOLINT: nothing of the command comes from outside.

  const auto now = parseInternetDateTime("2026-03-04T09:15:00Z").value_or(earliestInstant);
  CalendarSource source{folder / "calendar.ics",
                        {.from = now, .to = instantByAddingDays(now, 14)},
                        {"robin@orvan.example"},
                        "Europe/Lisbon"};
  std::vector<std::string> upcoming;
  while (const auto meeting = source.next()) {
    upcoming.push_back(formatInternetDateTime(meeting->startsAt) + " " + meeting->summary);
  }
  std::filesystem::remove_all(folder);

  EXPECT_THAT(upcoming,
              testing::ElementsAre("2026-03-08T09:00:00Z Attic plans and the piano",
                                   "2026-03-07T17:00:00Z Greek lesson (an hour later)",
                                   "2026-03-14T16:00:00Z Greek lesson", "2026-03-13T00:00:00Z Orchids in the dunes"));
  EXPECT_THAT(source.skipped(), testing::UnorderedElementsAre(testing::Pair(CalendarSkip::superseded, 1),
                                                              testing::Pair(CalendarSkip::cancelled, 1),
                                                              testing::Pair(CalendarSkip::declined, 1),
                                                              testing::Pair(CalendarSkip::nobodyElse, 1),
                                                              testing::Pair(CalendarSkip::outsideWindow, 2)));
}

} // namespace
} // namespace orvan
