#include "application/session/item_lookup.h"

#include <algorithm>
#include <optional>

#include "application/session/catch_up_list.h"

namespace orvan {
namespace {

/// The person key that an item key begins with, behind its length: "4:p-42|10:openThread|...".
std::optional<std::string> personKeyIn(const std::string& itemKey) {
  const auto colon = itemKey.find(':');
  if (colon == std::string::npos || colon == 0 || colon > 9 ||
      !std::ranges::all_of(itemKey.substr(0, colon), [](char digit) { return digit >= '0' && digit <= '9'; })) {
    return std::nullopt;
  }
  const auto length = std::stoul(itemKey.substr(0, colon));
  const bool isItemKey = itemKey.size() > colon + 1 + length && itemKey[colon + 1 + length] == '|';
  return isItemKey ? std::optional{itemKey.substr(colon + 1, length)} : std::nullopt;
}

void requireShown(const std::string& personKey, Session& session) {
  if (session.isHidden(personKey)) {
    throw Error(SessionError::personHidden, "looking for an item");
  }
}

bool isActive(const AttentionCatchUpItem& item, Session& session, Instant asOf) {
  const auto records = session.records(item.personKey());
  const auto record = std::ranges::find(records, item.itemKey(), &AttentionItemDispositionRecord::itemKey);
  return AttentionItemDispositionTransition::state(
             item.itemKey(), record == records.end() ? std::nullopt : std::optional{*record}, asOf)
             .kind() == AttentionItemState::Kind::active;
}

std::vector<ListedFollowUp> withItems(std::vector<ListedFollowUp> followUps) {
  std::erase_if(followUps, [](const ListedFollowUp& followUp) { return !followUp.item; });
  return followUps;
}

FoundItem foundItem(ListedFollowUp followUp, AttentionEvidenceBundle bundle) {
  auto item = followUp.item.value();
  return {std::move(item), std::move(bundle), std::move(followUp)};
}

std::optional<AttentionCatchUpItem> itemFromEvidence(Session& session, const AttentionEvidenceBundle& bundle,
                                                     Instant asOf) {
  const auto person = session.person(bundle.personKey());
  return person ? itemOf(*person, bundle, asOf) : std::nullopt;
}

std::vector<ListedFollowUp> dueOf(const std::string& personKey, Session& session, Instant asOf) {
  return withItems(session.readableStore().read(
      [&](Connection& connection) { return dueFollowUpsOf(personKey, asOf, connection); }));
}

/// What stands for the person.
FoundItem itemOfPerson(const std::string& personKey, Session& session, Instant asOf) {
  auto bundle = asKnownAt(asOf, session.bundle(personKey, asOf));
  if (auto followUp = followUpThatStands(personKey, session, asOf)) {
    return foundItem(*std::move(followUp), std::move(bundle));
  }
  if (auto item = itemFromEvidence(session, bundle, asOf)) {
    return {*std::move(item), std::move(bundle)};
  }
  auto due = dueOf(personKey, session, asOf);
  if (due.empty()) {
    throw Error(SessionError::noReasonNow, "looking for an item");
  }
  return foundItem(std::move(due.front()), std::move(bundle));
}

std::optional<ListedFollowUp> followUpWithItem(const std::string& itemKey, const std::string& personKey,
                                               Session& session) {
  auto followUps = withItems(session.readableStore().read(
      [&](Connection& connection) { return followUpsOf(personKey, FollowUpChoice::scheduled, connection); }));
  const auto found =
      std::ranges::find(followUps, itemKey, [](const ListedFollowUp& each) { return each.item->itemKey(); });
  return found == followUps.end() ? std::nullopt : std::optional{std::move(*found)};
}

/// An item key names one reason. When the person has another one by now, the user means something that no longer
/// stands.
void revalidate(const AttentionCatchUpItem& current, const std::string& itemKey,
                const AttentionEvidenceBundle& bundle) {
  if (!AttentionCatchUpSelector::revalidate(itemKey, current.personKey(), current.whyNow().evidenceReferences(),
                                            bundle)) {
    throw ReasonChanged(current.whyNow());
  }
}

} // namespace

bool isItemKey(const std::string& text) {
  return personKeyIn(text).has_value();
}

FoundItem itemCalled(const std::string& text, Session& session, Instant asOf) {
  const auto keyedPerson = personKeyIn(text);
  const auto personKey = session.personKeyOf(keyedPerson ? *keyedPerson : text);
  requireShown(personKey, session);
  if (!keyedPerson) {
    return itemOfPerson(personKey, session, asOf);
  }
  auto bundle = asKnownAt(asOf, session.bundle(personKey, asOf));
  if (auto followUp = followUpWithItem(text, personKey, session)) {
    return foundItem(*std::move(followUp), std::move(bundle));
  }
  auto current = itemFromEvidence(session, bundle, asOf);
  if (!current) {
    throw Error(SessionError::noReasonNow, "looking for an item");
  }
  revalidate(*current, text, bundle);
  return {*std::move(current), std::move(bundle)};
}

std::optional<ListedFollowUp> followUpThatStands(const std::string& personKey, Session& session, Instant asOf) {
  auto due = dueOf(personKey, session, asOf);
  const auto active =
      std::ranges::find_if(due, [&](const ListedFollowUp& each) { return isActive(*each.item, session, asOf); });
  return active == due.end() ? std::nullopt : std::optional{std::move(*active)};
}

About aboutOf(const FoundItem& found, Connection& connection) {
  return found.followUp ? aboutOf(*found.followUp, connection)
                        : aboutOf(found.item.personKey(), found.item.whyNow().evidenceReferences(), connection);
}

} // namespace orvan
