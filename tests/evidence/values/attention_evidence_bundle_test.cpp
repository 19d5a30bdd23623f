#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

TEST(EvidenceBundle, IsEmptyWhenNothingConcernsThePerson) {
  const auto isEmpty = [](std::vector<OpenThreadEvidence> threads, std::vector<UpcomingInteractionEvidence> meetings,
                          std::optional<ChangedContextEvidence> resumption, std::vector<CommitmentEvidence> commitments,
                          std::vector<SourceFreshnessEvidence> freshness, std::optional<std::string> lastCorrectionAt,
                          std::int64_t correctionCount) {
    return AttentionEvidenceBundle{"p",        "now",       30,        threads,          meetings,
                                   resumption, commitments, freshness, lastCorrectionAt, correctionCount}
        .isEmpty();
  };
  EXPECT_TRUE(isEmpty({}, {}, {}, {}, {}, {}, 0));
  EXPECT_TRUE(isEmpty({}, {}, {}, {}, {{"account", "sync", "stale", std::nullopt}}, {}, 0));
  EXPECT_TRUE(isEmpty({}, {}, {}, {}, {}, {}, 3));
  EXPECT_FALSE(isEmpty({{"t", "mail", "i", "se", "then"}}, {}, {}, {}, {}, {}, 0));
  EXPECT_FALSE(isEmpty({}, {{"i", "t", "se", "calendar", "then"}}, {}, {}, {}, {}, 0));
  EXPECT_FALSE(isEmpty({}, {}, ChangedContextEvidence{21, "then", "later", {}, 9}, {}, {}, {}, 0));
  EXPECT_FALSE(isEmpty({}, {}, {}, {{"ol", "promise", "then", std::nullopt}}, {}, {}, 0));
  EXPECT_FALSE(isEmpty({}, {}, {}, {}, {}, "then", 0));
}

} // namespace
} // namespace orvan
