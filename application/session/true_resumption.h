#pragma once

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// The bundle without a resumption of contact that there was none of. A mail that the user said waits for nothing is
/// kept from being shown, and so is left out of the history that a bundle is made from: the silence around it is none.
/// Reads nothing for a bundle without a resumption. Runs within the caller's read; throws StoreError.
AttentionEvidenceBundle withTrueResumption(AttentionEvidenceBundle bundle, Instant asOf, Connection& connection);

} // namespace orvan
