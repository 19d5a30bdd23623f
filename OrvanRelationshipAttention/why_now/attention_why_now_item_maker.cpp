#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

#include <algorithm>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/white_space.h"

namespace orvan::internal {

bool isValidDefiningTimestamp(std::string_view text) noexcept {
  // Reading is strict enough to refuse the empty text and surrounding white space by itself.
  return parseInternetDateTime(text).has_value();
}

bool haveValidIdentifiers(std::span<const AttentionWhyNowEvidenceReference> references) noexcept {
  return std::ranges::all_of(references,
                             [](const auto& reference) { return isTrimmedAndNotEmpty(reference.identifier()); });
}

CanonicalReferences canonicalized(std::vector<AttentionWhyNowEvidenceReference> references) {
  if (!haveValidIdentifiers(references)) {
    return {{}, false};
  }
  // No key name begins another, so this is the order of "name:identifier" without forming those texts. References that
  // compare equal are equal, so the order among them cannot show.
  std::ranges::sort(references, [](const auto& left, const auto& right) {
    return left.kind() == right.kind() ? left.identifier() < right.identifier() : left.keyName() < right.keyName();
  });
  const auto repeated = std::ranges::unique(references);
  references.erase(repeated.begin(), repeated.end());
  return {std::move(references), true};
}

AttentionWhyNowItem AttentionWhyNowItemMaker::make(AttentionWhyNowItem::Kind kind, std::string definingEventTimestamp,
                                                   std::string headline, std::vector<std::string> evidenceLines,
                                                   std::vector<AttentionWhyNowEvidenceReference> references) {
  auto canonical = canonicalized(std::move(references));
  const bool hasValidTimestamp = isValidDefiningTimestamp(definingEventTimestamp);
  return memberwise(kind, std::move(definingEventTimestamp), std::move(headline), std::move(evidenceLines),
                    std::move(canonical.references), canonical.valid, hasValidTimestamp);
}

AttentionWhyNowItem AttentionWhyNowItemMaker::memberwise(
    AttentionWhyNowItem::Kind kind, std::string definingEventTimestamp, std::string headline,
    std::vector<std::string> evidenceLines, std::vector<AttentionWhyNowEvidenceReference> evidenceReferences,
    bool hasValidEvidenceReferences, bool hasValidDefiningEventTimestamp) {
  return {kind,
          std::move(definingEventTimestamp),
          std::move(headline),
          std::move(evidenceLines),
          std::move(evidenceReferences),
          hasValidEvidenceReferences,
          hasValidDefiningEventTimestamp};
}

bool AttentionWhyNowItemMaker::hasValidEvidenceReferences(const AttentionWhyNowItem& item) noexcept {
  return item.hasValidEvidenceReferences_;
}

bool AttentionWhyNowItemMaker::hasValidDefiningEventTimestamp(const AttentionWhyNowItem& item) noexcept {
  return item.hasValidDefiningEventTimestamp_;
}

} // namespace orvan::internal
