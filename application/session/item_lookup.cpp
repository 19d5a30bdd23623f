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

/// The item that stands for the person by `bundle`, whatever its state.
AttentionCatchUpItem currentItem(Session& session, const AttentionEvidenceBundle& bundle, Instant asOf) {
  const auto person = session.person(bundle.personKey());
  auto item = person ? itemOf(*person, bundle, asOf) : std::nullopt;
  if (!item) {
    throw Error(SessionError::noReasonNow, "looking for an item");
  }
  return *std::move(item);
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
  auto bundle = asKnownAt(asOf, session.bundle(personKey, asOf));
  auto current = currentItem(session, bundle, asOf);
  if (keyedPerson) {
    revalidate(current, text, bundle);
  }
  return {std::move(current), std::move(bundle)};
}

} // namespace orvan
