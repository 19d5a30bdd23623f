#pragma once

#include <string>

#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"
#include "OrvanStore/connection.h"

/// How follow-ups surface as attention candidates.
namespace orvan::internal {

/// The reason that an open follow-up gives; `noticed` is how its line of evidence writes the detected-at text.
AttentionWhyNowItem followUpWhyNow(const std::string& openLoopID, const std::string& detectedAt,
                                   const std::string& noticed);

/// Which follow-up a candidate is of, and the times that it is written with.
struct CandidateSource {
  const std::string& personID;
  const std::string& openLoopID;
  const std::string& detectedAt;
  const std::string& dueAt;
  const std::string& createdAt;
};

/// Writes the candidate and its evidence, or renews its due time. Does nothing when the follow-up has no item.
void projectCandidate(Connection& connection, const CandidateSource& source);

} // namespace orvan::internal
