#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"

#include <utility>

#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan::internal {
namespace {

constexpr std::string_view keyNameEnd = ":";

void appendLength(std::string& key, std::size_t length) {
  if (!key.empty()) {
    key += '|';
  }
  key += std::to_string(length);
  key += ':';
}

void appendSegment(std::string& key, std::string_view segment) {
  appendLength(key, segment.size());
  key += segment;
}

void appendReference(std::string& key, const AttentionWhyNowEvidenceReference& reference) {
  appendLength(key, reference.keyName().size() + keyNameEnd.size() + reference.identifier().size());
  key += reference.keyName();
  key += keyNameEnd;
  key += reference.identifier();
}

bool isValid(const AttentionWhyNowItem& whyNow) noexcept {
  return AttentionWhyNowItemMaker::hasValidEvidenceReferences(whyNow) &&
         AttentionWhyNowItemMaker::hasValidDefiningEventTimestamp(whyNow);
}

AttentionRouteKind routeKind(AttentionWhyNowItem::Kind kind) noexcept {
  switch (kind) {
    case AttentionWhyNowItem::Kind::openThread:
    case AttentionWhyNowItem::Kind::changedContext:
      return AttentionRouteKind::personFocus;
    case AttentionWhyNowItem::Kind::commitment:
    case AttentionWhyNowItem::Kind::upcomingInteraction:
      return AttentionRouteKind::personPrep;
  }
  return AttentionRouteKind::personFocus;
}

} // namespace

std::optional<std::string> AttentionCatchUpItemMaker::itemKey(std::string_view personKey,
                                                              const AttentionWhyNowItem& whyNow) {
  if (!isValid(whyNow) || !isTrimmedAndNotEmpty(personKey)) {
    return std::nullopt;
  }
  std::string key;
  appendSegment(key, personKey);
  appendSegment(key, caseName(whyNow.kind()));
  appendSegment(key, whyNow.definingEventTimestamp());
  const auto lengthWithoutReferences = key.size();
  for (const auto& reference : whyNow.evidenceReferences()) {
    if (isTrimmedAndNotEmpty(reference.identifier())) {
      appendReference(key, reference);
    }
  }
  return key.size() == lengthWithoutReferences ? std::nullopt : std::optional{std::move(key)};
}

/// The person is the first segment, and the only one that differs.
std::optional<std::string> AttentionCatchUpItemMaker::itemKeyFor(std::string_view otherPersonKey,
                                                                 std::string_view itemKey, std::string_view personKey) {
  std::string person;
  appendSegment(person, personKey);
  if (!itemKey.starts_with(person + '|') || !isTrimmedAndNotEmpty(otherPersonKey)) {
    return std::nullopt;
  }
  std::string key;
  appendSegment(key, otherPersonKey);
  return key.append(itemKey.substr(person.size()));
}

std::optional<AttentionCatchUpItem> AttentionCatchUpItemMaker::make(std::string personKey, std::string displayName,
                                                                    AttentionWhyNowItem whyNow) {
  auto key = itemKey(personKey, whyNow);
  if (!key) {
    return std::nullopt;
  }
  return make(*std::move(key), std::move(personKey), std::move(displayName), std::move(whyNow));
}

AttentionCatchUpItem AttentionCatchUpItemMaker::make(std::string itemKey, std::string personKey,
                                                     std::string displayName, AttentionWhyNowItem whyNow) {
  AttentionRouteRequest route{itemKey, personKey, whyNow.evidenceReferences(), routeKind(whyNow.kind())};
  return {std::move(itemKey), std::move(personKey), std::move(displayName), std::move(whyNow), std::move(route)};
}

} // namespace orvan::internal
