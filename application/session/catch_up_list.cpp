#include "application/session/catch_up_list.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

namespace orvan {
namespace {

using Records = std::vector<AttentionItemDispositionRecord>;
using BundleOfPerson = std::unordered_map<std::string_view, const AttentionEvidenceBundle*>;

/// `bundles` must outlive the result.
BundleOfPerson byPerson(const std::vector<AttentionEvidenceBundle>& bundles) {
  BundleOfPerson bundleOf;
  for (const auto& bundle : bundles) {
    bundleOf.emplace(bundle.personKey(), &bundle);
  }
  return bundleOf;
}

/// What hides an item of that state; nothing hides an active one.
std::optional<NotShownReason> reasonFor(AttentionItemState::Kind state) {
  switch (state) {
    case AttentionItemState::Kind::snoozed:
      return NotShownReason::snoozed;
    case AttentionItemState::Kind::dismissed:
      return NotShownReason::dismissed;
    case AttentionItemState::Kind::resolved:
      return NotShownReason::resolved;
    case AttentionItemState::Kind::active:
      break;
  }
  return std::nullopt;
}

/// Why there is no item for the person, whatever was decided; nothing when there is one.
std::optional<NotShownReason> reasonWithoutItem(const ProjectedPerson& person, const AttentionEvidenceBundle* bundle,
                                                const std::optional<AttentionCatchUpItem>& item) {
  if (item) {
    return std::nullopt;
  }
  if (bundle == nullptr) {
    return NotShownReason::noEvidence;
  }
  if (!AttentionWhyNowSelector::select(*bundle)) {
    return NotShownReason::noValidReason;
  }
  return trimmed(person.displayName()).empty() ? NotShownReason::noName : NotShownReason::noItemKey;
}

/// Explains a person who was looked at and has no item on the list.
std::optional<NotShown> explain(const ProjectedPerson& person, const AttentionEvidenceBundle* bundle,
                                const Records& records, Instant asOf) {
  const auto item = bundle == nullptr ? std::nullopt : itemOf(person, *bundle, asOf);
  if (const auto reason = reasonWithoutItem(person, bundle, item)) {
    return NotShown{person.personKey(), person.displayName(), *reason, std::nullopt, std::nullopt};
  }
  const auto record = std::ranges::find(records, item->itemKey(), &AttentionItemDispositionRecord::itemKey);
  const auto state = AttentionItemDispositionTransition::state(
      item->itemKey(), record == records.end() ? std::nullopt : std::optional{*record}, asOf);
  const auto reason = reasonFor(state.kind());
  return reason ? std::optional{NotShown{person.personKey(), person.displayName(), *reason, item->itemKey(),
                                         state.until()}}
                : std::nullopt;
}

/// Explains everyone who was looked at and is not among `items`.
std::vector<NotShown> explainOthers(const std::vector<AttentionCatchUpItem>& items,
                                    std::span<const ProjectedPerson> lookedAt, const BundleOfPerson& bundleOf,
                                    const Records& records, Instant asOf) {
  std::unordered_set<std::string_view> shown;
  for (const auto& item : items) {
    shown.insert(item.personKey());
  }
  std::vector<NotShown> others;
  for (const auto& person : lookedAt) {
    if (shown.contains(person.personKey())) {
      continue;
    }
    const auto found = bundleOf.find(person.personKey());
    if (auto other = explain(person, found == bundleOf.end() ? nullptr : found->second, records, asOf)) {
      others.push_back(*std::move(other));
    }
  }
  return others;
}

} // namespace

std::optional<AttentionCatchUpItem> itemOf(const ProjectedPerson& person, const AttentionEvidenceBundle& bundle,
                                           Instant asOf) {
  const std::vector people{AttentionCatchUpPerson{person.personKey(), person.displayName(), bundle}};
  auto items = AttentionCatchUpSelector::select(people, {}, asOf);
  return items.empty() ? std::nullopt : std::optional{std::move(items.front())};
}

CatchUpList makeCatchUpList(Session& session, Instant asOf, Explanation explanation) {
  const auto bundles = session.bundles(asOf);
  const auto bundleOf = byPerson(bundles);
  const auto& projected = session.people();
  const auto cap = static_cast<std::size_t>(session.settings().peopleCap);
  const auto lookedAt = std::span{projected}.first(std::min(projected.size(), cap));

  std::vector<AttentionCatchUpPerson> people;
  Records records;
  for (const auto& person : lookedAt) {
    if (const auto found = bundleOf.find(person.personKey()); found != bundleOf.end()) {
      people.emplace_back(person.personKey(), person.displayName(), *found->second);
      std::ranges::move(session.records(person.personKey()), std::back_inserter(records));
    }
  }

  CatchUpList list;
  list.items = AttentionCatchUpSelector::select(people, records, asOf);
  list.beyondTheCap = projected.size() - lookedAt.size();
  if (explanation == Explanation::everyone) {
    list.notShown = explainOthers(list.items, lookedAt, bundleOf, records, asOf);
    for (const auto& person : std::span{projected}.subspan(lookedAt.size())) {
      list.notShown.push_back(
          {person.personKey(), person.displayName(), NotShownReason::beyondTheCap, std::nullopt, std::nullopt});
    }
  }
  return list;
}

} // namespace orvan
