#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

/// What the folders of this library share about why-now items. Embedding code neither builds items nor
/// sees their validity. Everything here is pure and may be called from any thread.
namespace orvan::internal {

/// Whether a text can be an item's defining timestamp: an Internet date-time without fractional seconds.
bool isValidDefiningTimestamp(std::string_view text) noexcept;

/// Whether every identifier is usable. True of an empty list.
bool haveValidIdentifiers(std::span<const AttentionWhyNowEvidenceReference> references) noexcept;

struct CanonicalReferences {
  std::vector<AttentionWhyNowEvidenceReference> references;
  bool valid;
};

/// The references ordered by key name and then identifier, each once. One unusable identifier spoils the whole list:
/// then the result is empty and not valid. An empty list is valid.
CanonicalReferences canonicalized(std::vector<AttentionWhyNowEvidenceReference> references);

/// Builds items, and reads what only the library may read of them.
class AttentionWhyNowItemMaker {
 public:
  AttentionWhyNowItemMaker() = delete;

  /// The way every producer makes an item: canonicalises `references` and works out both validity flags. Never fails;
  /// who takes the item must look at the flags.
  static AttentionWhyNowItem make(AttentionWhyNowItem::Kind kind, std::string definingEventTimestamp,
                                  std::string headline, std::vector<std::string> evidenceLines,
                                  std::vector<AttentionWhyNowEvidenceReference> references);

  /// An item of exactly these seven fields.
  static AttentionWhyNowItem memberwise(AttentionWhyNowItem::Kind kind, std::string definingEventTimestamp,
                                        std::string headline, std::vector<std::string> evidenceLines,
                                        std::vector<AttentionWhyNowEvidenceReference> evidenceReferences,
                                        bool hasValidEvidenceReferences, bool hasValidDefiningEventTimestamp);

  static bool hasValidEvidenceReferences(const AttentionWhyNowItem& item) noexcept;
  static bool hasValidDefiningEventTimestamp(const AttentionWhyNowItem& item) noexcept;
};

/// The item of one piece of evidence, complete whether or not it is valid.
AttentionWhyNowItem makeOpenThreadItem(const OpenThreadEvidence& evidence);
AttentionWhyNowItem makeChangedContextItem(const ChangedContextEvidence& evidence);
AttentionWhyNowItem makeCommitmentItem(const CommitmentEvidence& evidence);
AttentionWhyNowItem makeUpcomingInteractionItem(const UpcomingInteractionEvidence& evidence);

/// The timestamp as the user writes dates; a text that is not an Internet date-time comes back unchanged.
std::string humanDate(std::string_view timestamp);

} // namespace orvan::internal
