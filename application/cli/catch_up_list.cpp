#include "application/cli/catch_up_list.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

namespace orvan {
namespace {

using Records = std::vector<AttentionItemDispositionRecord>;

NotShownReason reasonFor(AttentionItemState::Kind state) {
  switch (state) {
    case AttentionItemState::Kind::snoozed:
      return NotShownReason::snoozed;
    case AttentionItemState::Kind::dismissed:
      return NotShownReason::dismissed;
    case AttentionItemState::Kind::resolved:
    case AttentionItemState::Kind::active:
      break;
  }
  return NotShownReason::resolved;
}

/// Explains a person who was looked at and has no item on the list.
NotShown explain(const ProjectedPerson& person, const AttentionEvidenceBundle* bundle, const Records& records,
                 Instant asOf) {
  NotShown notShown{person.personKey(), person.displayName(), NotShownReason::noEvidence, std::nullopt, std::nullopt};
  if (bundle == nullptr) {
    return notShown;
  }
  if (!AttentionWhyNowSelector::select(*bundle)) {
    notShown.reason = NotShownReason::noValidReason;
    return notShown;
  }
  const auto item = itemOf(person, *bundle, asOf);
  if (!item) {
    notShown.reason = NotShownReason::noItemKey;
    return notShown;
  }
  const auto record = std::ranges::find(records, item->itemKey(), &AttentionItemDispositionRecord::itemKey);
  const auto state = AttentionItemDispositionTransition::state(
      item->itemKey(), record == records.end() ? std::nullopt : std::optional{*record}, asOf);
  notShown.reason = reasonFor(state.kind());
  notShown.itemKey = item->itemKey();
  notShown.until = state.until();
  return notShown;
}

} // namespace

std::optional<AttentionCatchUpItem> itemOf(const ProjectedPerson& person, const AttentionEvidenceBundle& bundle,
                                           Instant asOf) {
  const std::vector people{AttentionCatchUpPerson{person.personKey(), person.displayName(), bundle}};
  auto items = AttentionCatchUpSelector::select(people, {}, asOf);
  return items.empty() ? std::nullopt : std::optional{std::move(items.front())};
}

CatchUpList makeCatchUpList(Workspace& workspace, Explanation explanation) {
  const auto bundles = workspace.bundles();
  std::unordered_map<std::string_view, const AttentionEvidenceBundle*> bundleOf;
  for (const auto& bundle : bundles) {
    bundleOf.emplace(bundle.personKey(), &bundle);
  }

  const auto& projected = workspace.people();
  const auto cap = static_cast<std::size_t>(workspace.settings().peopleCap);
  const auto lookedAt = std::span{projected}.first(std::min(projected.size(), cap));
  std::vector<AttentionCatchUpPerson> people;
  Records records;
  for (const auto& person : lookedAt) {
    if (const auto found = bundleOf.find(person.personKey()); found != bundleOf.end()) {
      people.emplace_back(person.personKey(), person.displayName(), *found->second);
      std::ranges::move(workspace.records(person.personKey()), std::back_inserter(records));
    }
  }

  CatchUpList list;
  const Instant asOf = workspace.settings().asOf;
  list.items = AttentionCatchUpSelector::select(people, records, asOf);
  list.beyondTheCap = projected.size() - lookedAt.size();
  if (explanation == Explanation::none) {
    return list;
  }
  std::unordered_set<std::string_view> shown;
  for (const auto& item : list.items) {
    shown.insert(item.personKey());
  }
  for (const auto& person : lookedAt) {
    if (!shown.contains(person.personKey())) {
      const auto found = bundleOf.find(person.personKey());
      list.notShown.push_back(explain(person, found == bundleOf.end() ? nullptr : found->second, records, asOf));
    }
  }
  for (const auto& person : std::span{projected}.subspan(lookedAt.size())) {
    list.notShown.push_back(
        {person.personKey(), person.displayName(), NotShownReason::beyondTheCap, std::nullopt, std::nullopt});
  }
  return list;
}

} // namespace orvan
