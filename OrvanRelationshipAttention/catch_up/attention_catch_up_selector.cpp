#include "OrvanRelationshipAttention/catch_up/attention_catch_up_selector.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

namespace orvan {
namespace {

using internal::AttentionCatchUpItemMaker;
using RecordState = std::function<AttentionItemState(std::string_view)>;

/// The stored state that counts for each item key; the keys lie in the records.
using StatesByKey = std::unordered_map<std::string_view, AttentionItemState>;

int precedence(const AttentionItemState& state) noexcept {
  switch (state.kind()) {
    case AttentionItemState::Kind::active:
      return 0;
    case AttentionItemState::Kind::snoozed:
      return 1;
    case AttentionItemState::Kind::dismissed:
      return 2;
    case AttentionItemState::Kind::resolved:
      return 3;
  }
  return 0;
}

StatesByKey statesByKey(std::span<const AttentionItemDispositionRecord> records) {
  StatesByKey states;
  states.reserve(records.size());
  for (const auto& record : records) {
    const auto [kept, isNew] = states.try_emplace(record.itemKey(), record.state());
    if (!isNew && precedence(record.state()) > precedence(kept->second)) {
      kept->second = record.state();
    }
  }
  return states;
}

bool qualifies(const AttentionCatchUpPerson& person) noexcept {
  return isTrimmedAndNotEmpty(person.personKey()) && person.evidence().personKey() == person.personKey() &&
         !trimmed(person.displayName()).empty();
}

std::optional<AttentionCatchUpItem> activeItem(const AttentionCatchUpPerson& person, const RecordState& recordState) {
  auto whyNow = AttentionWhyNowSelector::select(person.evidence());
  if (!whyNow) {
    return std::nullopt;
  }
  auto key = AttentionCatchUpItemMaker::itemKey(person.personKey(), *whyNow);
  if (!key || recordState(*key) != AttentionItemState::active()) {
    return std::nullopt;
  }
  return AttentionCatchUpItemMaker::make(*std::move(key), person.personKey(),
                                         std::string{trimmed(person.displayName())}, *std::move(whyNow));
}

} // namespace

std::vector<AttentionCatchUpItem> internal::selectCatchUp(std::span<const AttentionCatchUpPerson> people,
                                                          const RecordState& recordState) {
  std::vector<AttentionCatchUpItem> items;
  std::unordered_set<std::string_view> listed;
  listed.reserve(people.size());
  for (const auto& person : people) {
    if (!qualifies(person) || listed.contains(person.personKey())) {
      continue;
    }
    if (auto item = activeItem(person, recordState)) {
      listed.insert(person.personKey());
      items.push_back(*std::move(item));
    }
  }
  return items;
}

std::vector<AttentionCatchUpItem> AttentionCatchUpSelector::select(
    std::span<const AttentionCatchUpPerson> people, std::span<const AttentionItemDispositionRecord> dispositions,
    Instant asOf) {
  const auto states = statesByKey(dispositions);
  return internal::selectCatchUp(people, [&states, asOf](std::string_view itemKey) {
    const auto found = states.find(itemKey);
    return found == states.end() ? AttentionItemState::active() : internal::normalized(found->second, asOf);
  });
}

bool AttentionCatchUpSelector::revalidate(std::string_view itemKey, std::string_view personKey,
                                          std::span<const AttentionWhyNowEvidenceReference> evidenceReferences,
                                          const AttentionEvidenceBundle& bundle) {
  const auto whyNow = AttentionWhyNowSelector::select(bundle);
  return whyNow && AttentionCatchUpItemMaker::itemKey(personKey, *whyNow) == itemKey &&
         std::ranges::equal(whyNow->evidenceReferences(), evidenceReferences);
}

} // namespace orvan
