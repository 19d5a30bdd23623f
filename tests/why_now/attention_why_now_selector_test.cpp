#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "OrvanRelationshipAttention/why_now/attention_why_now_internal.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::Optional;
using testing::Property;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

const std::string first = "2026-03-01T10:00:00Z";
const std::string later = "2026-03-04T23:30:00Z";

OpenThreadEvidence threadAt(std::string occurredAt, std::string sourceEventID = "se1") {
  return {"t1", "mail", "i1", std::move(sourceEventID), std::move(occurredAt)};
}

ChangedContextEvidence resumptionAt(std::string resumedAt, std::vector<std::string> ids = {"i5"}) {
  return {21, "2026-01-01T10:00:00Z", std::move(resumedAt), std::move(ids), 2};
}

CommitmentEvidence commitmentAt(std::string detectedAt, std::string kind = "promise") {
  return {"o1", std::move(kind), std::move(detectedAt), "c1"};
}

UpcomingInteractionEvidence meetingAt(std::string occurredAt) {
  return {"i9", "t9", "se9", "calendar", std::move(occurredAt)};
}

struct Evidence {
  std::vector<OpenThreadEvidence> threads = {};
  std::optional<ChangedContextEvidence> resumption = {};
  std::vector<CommitmentEvidence> commitments = {};
  std::vector<UpcomingInteractionEvidence> meetings = {};
};

std::optional<AttentionWhyNowItem> select(const Evidence& evidence) {
  return AttentionWhyNowSelector::select({"p",
                                          "2026-03-05T00:00:00Z",
                                          30,
                                          evidence.threads,
                                          evidence.meetings,
                                          evidence.resumption,
                                          evidence.commitments,
                                          {{"account", "sync", "stale", std::nullopt}},
                                          "2026-03-04T00:00:00Z",
                                          3});
}

auto isReason(Kind kind, const std::string& timestamp) {
  return Optional(testing::AllOf(Property(&AttentionWhyNowItem::kind, kind),
                                 Property(&AttentionWhyNowItem::definingEventTimestamp, timestamp)));
}

TEST(Reason, IsTheOneWithTheLatestEvent) {
  EXPECT_FALSE(select({})) << "freshness and corrections are no reason";
  EXPECT_THAT(select({.threads = {threadAt(later)}, .commitments = {commitmentAt(first)}}),
              isReason(Kind::openThread, later));
  EXPECT_THAT(select({.threads = {threadAt(first)}, .commitments = {commitmentAt(later)}}),
              isReason(Kind::commitment, later));
  EXPECT_THAT(select({.resumption = resumptionAt(later), .meetings = {meetingAt(first)}}),
              isReason(Kind::changedContext, later));
  EXPECT_THAT(select({.threads = {threadAt(first)}, .resumption = resumptionAt(later, {})}),
              isReason(Kind::changedContext, later))
      << "a resumption that names no interaction competes";
}

TEST(Reason, ComparesTimestampsAsTextAndNotAsInstants) {
  EXPECT_THAT(
      select({.threads = {threadAt("2026-03-01T10:00:00+02:00")}, .meetings = {meetingAt("2026-03-01T09:30:00Z")}}),
      isReason(Kind::openThread, "2026-03-01T10:00:00+02:00"));
}

TEST(Reason, FollowsTheOrderOfKindsOnEqualTimestamps) {
  Evidence evidence{{threadAt(first)}, resumptionAt(first), {commitmentAt(first)}, {meetingAt(first)}};
  EXPECT_THAT(select(evidence), isReason(Kind::openThread, first));
  evidence.threads.clear();
  EXPECT_THAT(select(evidence), isReason(Kind::changedContext, first));
  evidence.resumption.reset();
  EXPECT_THAT(select(evidence), isReason(Kind::commitment, first));
}

TEST(Reason, LooksAtTheFirstOfEachListOnly) {
  EXPECT_THAT(select({.threads = {threadAt(first), threadAt(later)}}), isReason(Kind::openThread, first));
  EXPECT_THAT(select({.commitments = {commitmentAt(first), commitmentAt(later)}}), isReason(Kind::commitment, first));
  EXPECT_THAT(select({.meetings = {meetingAt(first), meetingAt(later)}}), isReason(Kind::upcomingInteraction, first));
  EXPECT_FALSE(select({.threads = {threadAt(first, ""), threadAt(later)}}));
}

TEST(Reason, PassesOverUnusableEvidenceAndTakesTheNextBest) {
  EXPECT_THAT(select({.threads = {threadAt(later, "")}, .commitments = {commitmentAt(first)}}),
              isReason(Kind::commitment, first));
  EXPECT_THAT(select({.resumption = resumptionAt(first), .meetings = {meetingAt("2026-03-09T10:00:00.250Z")}}),
              isReason(Kind::changedContext, first));
  EXPECT_THAT(select({.resumption = resumptionAt(later, {"i5", " "}), .meetings = {meetingAt(first)}}),
              isReason(Kind::upcomingInteraction, first));
}

class Wording : public testing::Test {
 protected:
  Wording() {
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("TZ", "Asia/Tokyo", 1);
  }
};

TEST_F(Wording, OfAnOpenThread) {
  const auto item = internal::makeOpenThreadItem(threadAt(later));
  EXPECT_EQ(item.headline(), "A conversation with them is waiting on your reply.");
  EXPECT_THAT(item.evidenceLines(), ElementsAre("Last message received Mar 5, 2026."));
  EXPECT_THAT(item.evidenceReferences(),
              ElementsAre(Reference::interaction("i1"), Reference::sourceEvent("se1"), Reference::thread("t1")));
}

TEST_F(Wording, OfAResumption) {
  const auto item = internal::makeChangedContextItem(resumptionAt(first, {"i7", "i5", "i7"}));
  EXPECT_EQ(item.headline(), "You reconnected after a quiet stretch.");
  EXPECT_THAT(item.evidenceLines(),
              ElementsAre("Quiet since Jan 1, 2026.", "Back in touch since Mar 1, 2026.", "2 messages since."));
  EXPECT_THAT(item.evidenceReferences(), ElementsAre(Reference::interaction("i5"), Reference::interaction("i7")));
  const auto countLine = [](std::int64_t count) {
    const ChangedContextEvidence evidence{21, "2026-01-01T10:00:00Z", first, {"i5", "i6"}, count};
    return internal::makeChangedContextItem(evidence).evidenceLines().back();
  };
  EXPECT_EQ(countLine(0), "0 messages since.");
  EXPECT_EQ(countLine(1), "1 message since.");
}

TEST_F(Wording, OfACommitmentFollowsItsExactKind) {
  const auto headline = [](const char* kind) {
    return internal::makeCommitmentItem(commitmentAt(first, kind)).headline();
  };
  EXPECT_EQ(headline("unanswered_question"), "There's a question still waiting on an answer.");
  EXPECT_EQ(headline("promise"), "You have something you said you'd follow up on.");
  EXPECT_EQ(headline("scheduled_followup"), "A follow-up with them is coming due.");
  EXPECT_EQ(headline("Promise"), "There's something still open with them.");
  const auto item = internal::makeCommitmentItem(commitmentAt(first));
  EXPECT_THAT(item.evidenceLines(), ElementsAre("Noticed Mar 1, 2026."));
  EXPECT_THAT(item.evidenceReferences(), ElementsAre(Reference::claimEvidence("c1"), Reference::openLoop("o1")));
  const auto unproven = internal::makeCommitmentItem({"o1", "promise", first, std::nullopt});
  EXPECT_THAT(unproven.evidenceReferences(), ElementsAre(Reference::openLoop("o1")));
}

TEST_F(Wording, OfAMeeting) {
  const auto item = internal::makeUpcomingInteractionItem(meetingAt(first));
  EXPECT_EQ(item.headline(), "You have an upcoming meeting with them.");
  EXPECT_THAT(item.evidenceLines(), ElementsAre("Scheduled for Mar 1, 2026."));
  EXPECT_THAT(item.evidenceReferences(),
              ElementsAre(Reference::interaction("i9"), Reference::sourceEvent("se9"), Reference::thread("t9")));
}

TEST_F(Wording, ShowsATimestampItCannotReadAsItIs) {
  const auto item = internal::makeOpenThreadItem(threadAt(" 2026-03-04T10:00:00Z"));
  EXPECT_THAT(item.evidenceLines(), ElementsAre("Last message received  2026-03-04T10:00:00Z."));
  EXPECT_EQ(item.definingEventTimestamp(), " 2026-03-04T10:00:00Z");
}

} // namespace
} // namespace orvan
