#include "OrvanRelationshipAttention/evidence/attention_evidence_bundle.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

struct Contents {
  std::vector<OpenThreadEvidence> threads = {};
  std::vector<UpcomingInteractionEvidence> meetings = {};
  std::optional<ChangedContextEvidence> resumption = {};
  std::vector<CommitmentEvidence> commitments = {};
  std::vector<SourceFreshnessEvidence> freshness = {};
  std::optional<std::string> lastCorrectionAt = {};
  std::int64_t correctionCount = 0;
};

bool isEmpty(const Contents& of) {
  const AttentionEvidenceBundle bundle{
      "p",           "2026-03-05T14:07:09Z", 30,           of.threads,          of.meetings,
      of.resumption, of.commitments,         of.freshness, of.lastCorrectionAt, of.correctionCount};
  return bundle.isEmpty();
}

TEST(EvidenceBundle, IsEmptyWhenNothingConcernsThePerson) {
  EXPECT_TRUE(isEmpty({}));
  EXPECT_TRUE(isEmpty({.freshness = {{"account", "sync", "stale", std::nullopt}}}));
  EXPECT_TRUE(isEmpty({.correctionCount = 3}));
  EXPECT_FALSE(isEmpty({.threads = {{"t", "mail", "i", "se", "2026-03-01T10:00:00Z"}}}));
  EXPECT_FALSE(isEmpty({.meetings = {{"i", "t", "se", "calendar", "2026-03-09T10:00:00Z"}}}));
  EXPECT_FALSE(isEmpty({.resumption = {{21, "2026-01-01T00:00:00Z", "2026-03-01T00:00:00Z", {}, 9}}}));
  EXPECT_FALSE(isEmpty({.commitments = {{"ol", "promise", "2026-03-01T10:00:00Z", std::nullopt}}}));
  EXPECT_FALSE(isEmpty({.lastCorrectionAt = "2020-01-01T00:00:00Z"}));
}

} // namespace
} // namespace orvan
