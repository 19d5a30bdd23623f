#include "OrvanRelationshipAttention/evidence/values/changed_context_detector.h"

#include <gmock/gmock.h>

#include <limits>

namespace orvan {
namespace {

using namespace std::chrono_literals;
using Times = std::vector<std::string>;

Instant noon(int month, int day) {
  return std::chrono::sys_days{std::chrono::year{2026} / month / day} + 12h;
}

/// Interactions i0, i1, ... at these times; a date alone means its noon.
std::vector<ChangedContextDetector::TimestampedInteraction> history(const Times& times) {
  std::vector<ChangedContextDetector::TimestampedInteraction> interactions;
  for (const auto& time : times) {
    const bool isDate = !time.contains('T');
    interactions.emplace_back("i" + std::to_string(interactions.size()), isDate ? time + "T12:00:00Z" : time);
  }
  return interactions;
}

std::optional<ChangedContextEvidence> detect(const Times& times, Instant asOf) {
  return ChangedContextDetector::detectResumption(history(times), asOf, 21, 30, 5);
}

auto isResumption(const char* quietSince, const char* resumedAt, std::vector<std::string> ids, std::int64_t count) {
  return testing::Optional(ChangedContextEvidence{21, quietSince, resumedAt, std::move(ids), count});
}

TEST(Resumption, FollowsTheLatestGapOnlyAndKeepsTheTimesAroundItAsTheyAre) {
  const Times times{"2026-01-01", "2026-01-31", "2026-02-01T13:00:00+01:00", "2026-02-26"};
  EXPECT_THAT(detect(times, noon(3, 5)), isResumption("2026-02-01T13:00:00+01:00", "2026-02-26T12:00:00Z", {"i3"}, 1));
  EXPECT_FALSE(detect(times, noon(2, 10))) << "the gap before 31 January would qualify";
}

TEST(Resumption, NeedsAGapOfTheWholeThreshold) {
  EXPECT_FALSE(detect({}, noon(3, 10)));
  EXPECT_FALSE(detect({"2026-03-01"}, noon(3, 10)));
  EXPECT_FALSE(detect({"2026-02-08T12:00:01Z", "2026-03-01"}, noon(3, 10)));
  EXPECT_TRUE(detect({"2026-02-08T12:00:00Z", "2026-03-01"}, noon(3, 10)));
}

TEST(Resumption, MayBeExactlyAsOldAsTheWindowAndNotLieAhead) {
  const Times times{"2026-01-01", "2026-03-01"};
  EXPECT_TRUE(detect(times, noon(3, 1)));
  EXPECT_FALSE(detect(times, noon(3, 1) - 1us));
  EXPECT_TRUE(detect(times, noon(3, 1) + 30 * 86400s));
  EXPECT_FALSE(detect(times, noon(3, 1) + 30 * 86400s + 1us));
}

TEST(Resumption, CountsEveryInteractionButNamesTheFirstFew) {
  Times times{"2026-01-01"};
  times.insert(times.end(), 8, "2026-03-01");
  EXPECT_THAT(detect(times, noon(3, 4)),
              isResumption("2026-01-01T12:00:00Z", "2026-03-01T12:00:00Z", {"i1", "i2", "i3", "i4", "i5"}, 8));
  EXPECT_DEATH(ChangedContextDetector::detectResumption(history(times), noon(3, 4), 21, 30, -1),
               "must not be negative");
}

TEST(Resumption, IsAbsentWhenAnyTimestampCannotBeRead) {
  EXPECT_FALSE(detect({"2025-01-01T12:00:00.500Z", "2026-01-01", "2026-03-01"}, noon(3, 10)));
  EXPECT_FALSE(detect({"2026-01-01", "2026-03-01", "2026-03-02T12:00:00"}, noon(3, 10)));
}

TEST(Resumption, TakesThresholdsOfAnySize) {
  constexpr auto most = std::numeric_limits<std::int64_t>::max();
  const auto interactions = history({"2026-03-01", "2026-03-01"});
  EXPECT_FALSE(ChangedContextDetector::detectResumption(interactions, noon(3, 10), most, most, 5));
  EXPECT_TRUE(ChangedContextDetector::detectResumption(interactions, Instant::max(), -most, most, 5));
}

} // namespace
} // namespace orvan
