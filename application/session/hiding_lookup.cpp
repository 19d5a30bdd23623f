#include "application/session/hiding_lookup.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>

#include "application/session/about.h"
#include "application/session/item_lookup.h"

namespace orvan {
namespace {

HidingTarget conversationOf(const std::string& itemKey, Session& session, Instant asOf) {
  session.openForDeciding();
  const auto found = itemCalled(itemKey, session, asOf);
  const auto about =
      session.readableStore().read([&found](Connection& connection) { return aboutOf(found, connection); });
  if (!about.threadID) {
    throw Error(SessionError::conversationUnknown, "looking for an item's conversation");
  }
  return {HiddenScope::conversation, *about.threadID, about.subject.value_or(about.title.value_or("")),
          found.item.personKey()};
}

std::vector<HidingTarget> accountsCalled(const std::string& text, Connection& connection) {
  std::vector<HidingTarget> accounts;
  auto rows = connection.query(R"sql(
SELECT id, source_type
FROM source_account
WHERE id = ?1 OR source_type = ?1 OR id IN (SELECT source_account_id FROM remembered_source WHERE path = ?2)
ORDER BY id
)sql",
                               text, std::filesystem::absolute(text).lexically_normal().native());
  while (rows.next()) {
    accounts.push_back(
        {HiddenScope::account, std::string{rows.text(Column{0})}, std::string{rows.text(Column{1})}, std::nullopt});
  }
  return accounts;
}

/// Nobody when no person goes by that word.
std::optional<std::string> personCalled(const std::string& text, Session& session) {
  try {
    return session.personKeyOf(text);
  } catch (const Error& error) {
    if (error.code() == SessionError::personUnknown) {
      return std::nullopt;
    }
    throw;
  }
}

bool isAmong(const std::vector<std::string>& texts, const std::string& text) {
  return std::ranges::find(texts, text) != texts.end();
}

template <typename Thing, typename WordOf>
const Thing& onlyOne(const std::vector<Thing>& meant, WordOf wordOf) {
  if (meant.size() > 1) {
    std::vector<std::string> options;
    std::ranges::transform(meant, std::back_inserter(options), wordOf);
    throw SeveralMeant(std::move(options));
  }
  return meant.front();
}

} // namespace

HidingTarget hidingTargetCalled(const std::string& text, Session& session, Instant asOf) {
  if (isItemKey(text)) {
    return conversationOf(text, session, asOf);
  }
  auto meant = session.readableStore().read([&](Connection& connection) { return accountsCalled(text, connection); });
  // Whoever means no account is told which people are like it.
  const auto personKey = meant.empty() ? std::optional{session.personKeyOf(text)} : personCalled(text, session);
  if (personKey) {
    const auto person = session.person(*personKey);
    meant.push_back({HiddenScope::person, *personKey, person ? person->displayName() : "", personKey});
  }
  return onlyOne(meant, &HidingTarget::targetID);
}

HiddenThing hiddenThingCalled(const std::string& text, Session& session) {
  auto things = session.readableStore().read(hiddenThings);
  std::vector<std::string> targets{text};
  try {
    targets.push_back(hidingTargetCalled(text, session, {}).targetID);
  } catch (const Error&) { // NOLINT(bugprone-empty-catch): one of several namesakes may be hidden, a source gone.
  }
  const auto isMeant = [&](const HiddenThing& thing) {
    return thing.key == text || thing.name == text || isAmong(targets, thing.targetID);
  };
  // A conversation goes by the person, too, unless the person is hidden.
  const auto isWithMeant = [&](const HiddenThing& thing) {
    return thing.personID && isAmong(targets, *thing.personID);
  };
  if (std::ranges::any_of(things, isMeant)) {
    std::erase_if(things, std::not_fn(isMeant));
  } else {
    std::erase_if(things, std::not_fn(isWithMeant));
  }
  if (things.empty()) {
    throw Error(SessionError::nothingHidden, "looking for what is hidden");
  }
  return onlyOne(things, &HiddenThing::key);
}

} // namespace orvan
