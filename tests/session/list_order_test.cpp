#include "application/session/list_order.h"

#include <gtest/gtest.h>

#include "OrvanPlatform/internet_date_time.h"
#include "application/session/catch_up_list.h"

namespace orvan {
namespace {

constexpr Instant asOf = std::chrono::sys_days{std::chrono::year{2026} / 3 / 31};

std::string daysAgo(std::int64_t days) {
  return formatInternetDateTime(instantBySubtractingDays(asOf, days));
}

AttentionEvidenceBundle bundle(std::vector<OpenThreadEvidence> threads,
                               std::vector<UpcomingInteractionEvidence> meetings,
                               std::vector<CommitmentEvidence> commitments) {
  return {"p", daysAgo(0), 30, std::move(threads), std::move(meetings), {}, std::move(commitments), {}, {}, 0};
}
AttentionEvidenceBundle waiting(std::int64_t days) {
  return bundle({{"t", "mail", "i", "s", daysAgo(days)}}, {}, {});
}
AttentionEvidenceBundle meeting(std::int64_t inDays) {
  return bundle({}, {{"i", "t", "s", "calendar", daysAgo(-inDays)}}, {});
}
AttentionEvidenceBundle open(std::int64_t days, const char* kind = "unanswered_question") {
  return bundle({}, {}, {{"o", kind, daysAgo(days), "e"}});
}

ListPlace place(const AttentionEvidenceBundle& evidence, double exchange = 1, bool isAcquainted = true) {
  ContactOutlook outlook;
  outlook.exchange = exchange;
  outlook.isAcquainted = isAcquainted;
  return placeOf(itemOf({"p", "Zoë"}, evidence, asOf).value(), evidence, outlook, asOf);
}

TEST(ListPlace, IsByPartAndThenByExchangeAndRecency) {
  EXPECT_EQ(place(open(14)).part, ListPart::near);
  EXPECT_EQ(place(open(15)).part, ListPart::current);
  EXPECT_EQ(place(meeting(7)).part, ListPart::near);
  EXPECT_EQ(place(meeting(8)).part, ListPart::current);
  EXPECT_EQ(place(waiting(1)).part, ListPart::current);
  EXPECT_EQ(place(waiting(90)).part, ListPart::current);
  EXPECT_EQ(place(waiting(91)).part, ListPart::older);
  EXPECT_EQ(place(open(91)).part, ListPart::older);
  EXPECT_EQ(place(open(91, "promise")).part, ListPart::current) << "what the user promised does not go stale";
  EXPECT_EQ(place(waiting(1), 1, false).part, ListPart::strangers);
  EXPECT_EQ(place(meeting(1), 1, false).part, ListPart::near) << "whom the user is about to meet is no stranger";

  EXPECT_TRUE(place(open(14), 0).isBefore(place(waiting(1), 9)));
  EXPECT_TRUE(place(waiting(50), 9).isBefore(place(waiting(1), 1)));
  EXPECT_TRUE(place(waiting(1)).isBefore(place(waiting(20))));
  EXPECT_TRUE(place(waiting(80), 0).isBefore(place(waiting(1), 9, false)));
}

TEST(AList, OfAPastDayLeavesOutWhatWasNoticedLater) {
  const auto later = open(-1);
  EXPECT_TRUE(asKnownAt(asOf, later).commitments().empty());
  EXPECT_EQ(asKnownAt(instantByAddingDays(asOf, 1), later), later);
}

} // namespace
} // namespace orvan
