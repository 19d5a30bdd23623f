#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_compiler_options.h"
#include "OrvanRelationshipAttention/evidence/values/changed_context_detector.h"
#include "OrvanStore/connection.h"

namespace orvan::internal {

/// The reads behind a bundle, one statement or family of statements in each source file. Each runs within the caller's
/// read of the store and throws StoreError.
///
/// A person is the set of identities whose membership is live: `ended_at` NULL and `state` 'high_conf' or 'confirmed'.
/// A row that lacks a column it needs is passed over. A value that is not text counts as lacking.
class EvidenceQueries {
 public:
  explicit EvidenceQueries(const AttentionEvidenceCompilerOptions& options) : options_(options) {}

  struct UserCorrections {
    std::optional<std::string> lastAt;
    std::int64_t countInWindow = 0;
  };

  std::vector<OpenThreadEvidence> fetchOpenThreads(std::string_view personKey, Instant asOf,
                                                   Connection& connection) const;
  std::vector<UpcomingInteractionEvidence> fetchUpcomingInteractions(std::string_view personKey, Instant asOf,
                                                                     Connection& connection) const;
  /// The whole history, oldest first; interactions after the moment of evaluation are part of it.
  static std::vector<ChangedContextDetector::TimestampedInteraction> fetchInteractionTimestamps(
      std::string_view personKey, Connection& connection);
  std::vector<CommitmentEvidence> fetchCommitments(std::string_view personKey, Connection& connection) const;
  /// Throws StoreError(StoreFault::columnIsNull) when the person is seen in an account without an identifier.
  static std::vector<SourceFreshnessEvidence> fetchSourceFreshness(std::string_view personKey, Connection& connection);
  /// Not limited by the moment of evaluation: a correction stamped later counts.
  UserCorrections fetchUserCorrections(std::string_view personKey, Instant asOf, Connection& connection) const;

 private:
  AttentionEvidenceCompilerOptions options_;
};

} // namespace orvan::internal
