#include "application/desktop/store_readings.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "application/session/person_lookup.h"
#include "application/session/session_error.h"
#include "application/session/shown_items.h"

namespace orvan {
namespace {

std::optional<Instant> lastBroughtIn(Connection& connection) {
  const auto at = connection.fetchOptionalText(R"sql(
SELECT max(last_successful_sync_at)
FROM source_progress_projection
WHERE last_successful_sync_at IS NOT NULL
)sql");
  return at ? parseInternetDateTime(*at) : std::nullopt;
}

void rememberAsShown(const CatchUpList& list, Instant asOf, Session& session) {
  std::vector<AttentionCatchUpItem> items;
  std::ranges::transform(std::span{list.rows}.first(list.rows.size() - list.older), std::back_inserter(items),
                         &CatchUpRow::item);
  rememberShown(items, asOf, session);
}

std::optional<Instant> nextDueAfter(Instant asOf, Connection& connection) {
  const auto scheduled = followUps(FollowUpChoice::scheduled, connection);
  const auto next = std::ranges::find_if(scheduled, [asOf](const auto& followUp) { return followUp.dueAt > asOf; });
  return next == scheduled.end() ? std::nullopt : std::optional{next->dueAt};
}

/// Whether the person merely has no item, which is no fault.
bool meansNoItem(const Error& error) {
  return error.code() == SessionError::noReasonNow || error.code() == SessionError::personHidden;
}

std::optional<ItemDetails> detailsOf(const std::string& personKey, Session& session, Instant asOf) {
  try {
    return itemDetails(personKey, session, asOf);
  } catch (const Error& error) {
    if (meansNoItem(error)) {
      return std::nullopt;
    }
    throw;
  }
}

std::vector<HiddenThing> hiddenWith(const std::string& personKey, Connection& connection) {
  auto things = hiddenThings(connection);
  std::erase_if(things, [&personKey](const HiddenThing& thing) {
    return thing.personID != personKey || thing.scope == HiddenScope::person;
  });
  return things;
}

} // namespace

ListReading readList(Session& session, Instant asOf) {
  session.openForShowing();
  const auto version = dataVersion(session);
  session.readAgain();
  auto list = makeCatchUpList(session, asOf, Explanation::everyone);
  rememberAsShown(list, asOf, session);
  const auto broughtInAt =
      session.readableStore().read([](Connection& connection) { return lastBroughtIn(connection); });
  const auto nextDueAt =
      session.readableStore().read([asOf](Connection& connection) { return nextDueAfter(asOf, connection); });
  session.giveMemoryBack();
  return {std::move(list), asOf, broughtInAt, version, nextDueAt};
}

std::optional<PersonReading> readPerson(Session& session, const std::string& personKey, Instant asOf) {
  session.openForShowing();
  const auto person = session.person(personKey);
  if (!person) {
    return std::nullopt;
  }
  auto addresses =
      session.readableStore().read([&personKey](Connection& connection) { return addressesOf(personKey, connection); });
  auto followUps = session.readableStore().read(
      [&personKey](Connection& connection) { return followUpsOf(personKey, FollowUpChoice::scheduled, connection); });
  PersonReading reading{personKey,
                        person->displayName(),
                        std::move(addresses),
                        detailsOf(personKey, session, asOf),
                        session.isHidden(personKey),
                        {},
                        std::move(followUps)};
  reading.hiddenThings =
      session.readableStore().read([&personKey](Connection& connection) { return hiddenWith(personKey, connection); });
  if (!reading.isHidden) {
    reading.history = contactHistory(session, personKey, asOf);
  }
  session.giveMemoryBack();
  return reading;
}

std::vector<ListedPerson> findPeople(Session& session, const std::string& text, std::size_t most, Instant asOf) {
  auto people = peopleList(session, text, asOf);
  sortByExchange(people, session, asOf);
  people.resize(std::min(people.size(), most));
  return people;
}

std::int64_t dataVersion(Session& session) {
  return session.readableStore().withoutTransaction(
      [](Connection& connection) { return connection.fetchOptionalInteger("PRAGMA data_version").value_or(0); });
}

} // namespace orvan
