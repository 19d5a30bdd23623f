#include <gtest/gtest.h>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler_error.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler_options.h"

namespace orvan {
namespace {

struct Contents {
  std::string generatedAt = "2026-03-05T14:07:09Z";
  std::vector<OpenThreadEvidence> threads = {};
  std::vector<UpcomingInteractionEvidence> meetings = {};
  std::optional<ChangedContextEvidence> resumption = {};
  std::vector<CommitmentEvidence> commitments = {};
  std::vector<SourceFreshnessEvidence> freshness = {};
  std::optional<std::string> lastCorrectionAt = {};
  std::int64_t correctionCount = 0;
};

AttentionEvidenceBundle bundle(const Contents& of) {
  return {"p",           of.generatedAt, 30,           of.threads,          of.meetings,
          of.resumption, of.commitments, of.freshness, of.lastCorrectionAt, of.correctionCount};
}

TEST(EvidenceBundle, IsEmptyWhenNothingConcernsThePerson) {
  EXPECT_TRUE(bundle({}).isEmpty());
  EXPECT_TRUE(bundle({.freshness = {{"account", "sync", "stale", std::nullopt}}}).isEmpty());
  EXPECT_TRUE(bundle({.correctionCount = 3}).isEmpty());
  EXPECT_FALSE(bundle({.threads = {{"t", "mail", "i", "se", "2026-03-01T10:00:00Z"}}}).isEmpty());
  EXPECT_FALSE(bundle({.meetings = {{"i", "t", "se", "calendar", "2026-03-09T10:00:00Z"}}}).isEmpty());
  EXPECT_FALSE(bundle({.resumption = {{21, "2026-01-01T00:00:00Z", "2026-03-01T00:00:00Z", {}, 9}}}).isEmpty());
  EXPECT_FALSE(bundle({.commitments = {{"ol", "promise", "2026-03-01T10:00:00Z", std::nullopt}}}).isEmpty());
  EXPECT_FALSE(bundle({.lastCorrectionAt = "2020-01-01T00:00:00Z"}).isEmpty());
}

TEST(EvidenceBundle, DiffersWithTheMomentItIsFor) {
  EXPECT_EQ(bundle({}), bundle({}));
  EXPECT_NE(bundle({}), bundle({.generatedAt = "2026-03-05T14:07:10Z"}));
}

TEST(CompilerOptions, ShipWithTheDocumentedSettings) {
  const auto& options = AttentionEvidenceCompilerOptions::defaults;
  EXPECT_EQ(options.upcomingInteractionWindowDays(), 14);
  EXPECT_EQ(options.quietPeriodThresholdDays(), 21);
  EXPECT_EQ(options.recentWindowDays(), 30);
  EXPECT_EQ(options.maxOpenThreadsPerPerson(), 5);
  EXPECT_EQ(options.maxUpcomingInteractionsPerPerson(), 5);
  EXPECT_EQ(options.maxCommitmentsPerPerson(), 5);
  EXPECT_EQ(options.maxResumedInteractionIDsPerBundle(), 5);
  EXPECT_EQ(options.maxPeopleGlobalCap(), 200);
}

TEST(CompilerError, IsACodeThatACallerCanTellApart) {
  const Error thrown{AttentionEvidenceCompilerError::invalidKeyLength, "opening the store"};
  EXPECT_EQ(thrown.code(), AttentionEvidenceCompilerError::invalidKeyLength);
  EXPECT_NE(thrown.code(), AttentionEvidenceCompilerError::cannotOpenEncryptedStore);
  EXPECT_TRUE(thrown.code()) << "a code of zero would read as success";
}

} // namespace
} // namespace orvan
