#pragma once

#include <optional>

#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan {

/// Chooses and words the one reason to get back in touch with a person. Keeps nothing; may be called from any thread,
/// but not while another thread changes the environment, from which the user's locale and time zone are read.
class AttentionWhyNowSelector {
 public:
  AttentionWhyNowSelector() = delete;

  /// The reason with the latest event, by the timestamps' text, among the first open thread, the changed context, the
  /// first commitment and the first upcoming interaction; on equal texts the first of these wins. Evidence with an
  /// unusable identifier or timestamp is passed over. Absent when nothing is left.
  static std::optional<AttentionWhyNowItem> select(const AttentionEvidenceBundle& bundle);
};

} // namespace orvan
