#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

#include <gmock/gmock.h>

#include <cstdlib>

#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {
namespace {

using testing::AllOf;
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
  const std::vector<SourceFreshnessEvidence> freshness{{"account", "sync", "stale", std::nullopt}};
  return AttentionWhyNowSelector::select({"p", later, 30, evidence.threads, evidence.meetings, evidence.resumption,
                                          evidence.commitments, freshness, later, 3});
}

auto isReason(Kind kind, const std::string& timestamp) {
  return Optional(AllOf(Property(&AttentionWhyNowItem::kind, kind),
                        Property(&AttentionWhyNowItem::definingEventTimestamp, timestamp)));
}

TEST(Reason, IsTheLatestAmongTheFirstOfEachListComparedAsText) {
  const std::string ahead = "2026-03-01T10:00:00+02:00";
  struct Case {
    Evidence evidence;
    Kind kind;
    std::string timestamp;
  };
  for (const auto& [evidence, kind, timestamp] : std::vector<Case>{
           {{.threads = {threadAt(later)}, .commitments = {commitmentAt(first)}}, Kind::openThread, later},
           {{.threads = {threadAt(first)}, .commitments = {commitmentAt(later)}}, Kind::commitment, later},
           {{.resumption = resumptionAt(later), .meetings = {meetingAt(first)}}, Kind::changedContext, later},
           {{.threads = {threadAt(first)}, .resumption = resumptionAt(later, {})}, Kind::changedContext, later},
           {{.threads = {threadAt(ahead)}, .meetings = {meetingAt("2026-03-01T09:30:00Z")}}, Kind::openThread, ahead},
           {{.threads = {threadAt(first), threadAt(later)}}, Kind::openThread, first},
           {{.commitments = {commitmentAt(first), commitmentAt(later)}}, Kind::commitment, first},
           {{.meetings = {meetingAt(first), meetingAt(later)}}, Kind::upcomingInteraction, first},
           // Equal timestamps leave the choice to the order of kinds.
           {{{threadAt(first)}, resumptionAt(first), {commitmentAt(first)}, {meetingAt(first)}},
            Kind::openThread,
            first},
           {{{}, resumptionAt(first), {commitmentAt(first)}, {meetingAt(first)}}, Kind::changedContext, first},
           {{{}, {}, {commitmentAt(first)}, {meetingAt(first)}}, Kind::commitment, first},
           // Unusable evidence is passed over.
           {{.threads = {threadAt(later, "")}, .commitments = {commitmentAt(first)}}, Kind::commitment, first},
           {{.resumption = resumptionAt(first), .meetings = {meetingAt(later + ' ')}}, Kind::changedContext, first},
           {{.resumption = resumptionAt(later, {"i5", " "}), .meetings = {meetingAt(first)}},
            Kind::upcomingInteraction,
            first}}) {
    EXPECT_THAT(select(evidence), isReason(kind, timestamp));
  }
  EXPECT_FALSE(select({})) << "freshness and corrections are no reason";
  EXPECT_FALSE(select({.threads = {threadAt(first, ""), threadAt(later)}}));
}

class Wording : public testing::Test {
 protected:
  Wording() {
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("TZ", "Asia/Tokyo", 1);
  }
};

auto reads(const std::string& headline, const std::vector<std::string>& lines,
           const std::vector<Reference>& references) {
  return AllOf(Property("headline", &AttentionWhyNowItem::headline, headline),
               Property("lines", &AttentionWhyNowItem::evidenceLines, lines),
               Property("references", &AttentionWhyNowItem::evidenceReferences, references));
}

TEST_F(Wording, OfAConversationAndAMeeting) {
  EXPECT_THAT(internal::makeOpenThreadItem(threadAt(later)),
              reads("A conversation with them is waiting on your reply.", {"Last message received Mar 5, 2026."},
                    {Reference::interaction("i1"), Reference::sourceEvent("se1"), Reference::thread("t1")}));
  EXPECT_THAT(internal::makeUpcomingInteractionItem(meetingAt(first)),
              reads("You have an upcoming meeting with them.", {"Scheduled for Mar 1, 2026."},
                    {Reference::interaction("i9"), Reference::sourceEvent("se9"), Reference::thread("t9")}));
  const auto unreadable = internal::makeOpenThreadItem(threadAt(" 2026-03-04T10:00:00Z"));
  EXPECT_THAT(unreadable.evidenceLines(), ElementsAre("Last message received  2026-03-04T10:00:00Z."));
  EXPECT_EQ(unreadable.definingEventTimestamp(), " 2026-03-04T10:00:00Z");
}

TEST_F(Wording, OfAResumption) {
  for (const auto& [count, line] :
       {std::pair{0, "0 messages since."}, {1, "1 message since."}, {2, "2 messages since."}}) {
    const ChangedContextEvidence evidence{21, "2026-01-01T10:00:00Z", first, {"i7", "i5", "i7"}, count};
    EXPECT_THAT(internal::makeChangedContextItem(evidence),
                reads("You reconnected after a quiet stretch.",
                      {"Quiet since Jan 1, 2026.", "Back in touch since Mar 1, 2026.", line},
                      {Reference::interaction("i5"), Reference::interaction("i7")}));
  }
}

TEST_F(Wording, OfACommitmentFollowsItsExactKind) {
  for (const auto& [kind, headline] :
       {std::pair{"unanswered_question", "There's a question still waiting on an answer."},
        {"promise", "You have something you said you'd follow up on."},
        {"scheduled_followup", "A follow-up with them is coming due."},
        {"Promise", "There's something still open with them."}}) {
    EXPECT_THAT(internal::makeCommitmentItem(commitmentAt(first, kind)),
                reads(headline, {"Noticed Mar 1, 2026."}, {Reference::claimEvidence("c1"), Reference::openLoop("o1")}));
  }
  const auto unproven = internal::makeCommitmentItem({"o1", "promise", first, std::nullopt});
  EXPECT_THAT(unproven.evidenceReferences(), ElementsAre(Reference::openLoop("o1")));
}

} // namespace
} // namespace orvan
