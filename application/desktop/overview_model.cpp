#include "application/desktop/overview_model.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "OrvanPlatform/human_date.h"
#include "application/desktop/failure_in_words.h"
#include "application/desktop/wording.h"
#include "application/session/shared_names.h"

namespace orvan {
namespace {

/// More dots than these are no picture any more.
constexpr std::size_t mostInPicture = 240;
/// Of those who drifted away or wait: they get in before others with whom more is exchanged.
constexpr std::size_t mostOfAGroup = 60;
constexpr std::size_t rowsOfAGroup = 8;

std::int64_t exchangedWith(const ContactSummary& person) {
  return person.exchangedLastYear + person.exchangedYearBefore;
}

/// Those first with whom most is exchanged.
bool comesBefore(const ContactSummary& person, const ContactSummary& other) {
  const auto here = exchangedWith(person);
  const auto there = exchangedWith(other);
  return here == there ? person.personKey < other.personKey : here > there;
}

bool isDrawable(const ContactSummary& person) {
  return exchangedWith(person) > 0 && person.lastContactAt.has_value();
}

QString dateText(std::optional<Instant> at) {
  return at ? displayText(humanDateText(*at)) : QString{};
}

} // namespace

/// What is kept of an overview of thousands.
struct OverviewModel::Reading {
  struct Group {
    std::size_t count;
    std::vector<ContactSummary> first;
  };

  std::size_t people = 0;
  std::size_t inTouch = 0;
  Group driftedAway;
  Group waitingForUser;
  Group waitingForThem;
  std::vector<ContactSummary> drawn;
  /// By key, of those whose name others have too.
  std::unordered_map<std::string, std::string> addresses;
  Instant asOf;
};

namespace {

std::vector<ContactSummary> drawnOf(std::vector<ContactSummary> overview, const ContactGroups& groups) {
  std::vector<ContactSummary> drawn;
  std::unordered_set<std::string> keys;
  const auto add = [&drawn, &keys](const std::vector<ContactSummary>& people, std::size_t most) {
    for (const auto& person : std::span{people}.first(std::min(most, people.size()))) {
      if (drawn.size() < mostInPicture && isDrawable(person) && keys.insert(person.personKey).second) {
        drawn.push_back(person);
      }
    }
  };
  for (const auto* group : {&groups.driftedAway, &groups.waitingForUser, &groups.waitingForThem}) {
    add(*group, mostOfAGroup);
  }
  std::ranges::sort(overview, &comesBefore);
  add(overview, overview.size());
  std::ranges::sort(drawn, &comesBefore);
  return drawn;
}

} // namespace

OverviewModel::OverviewModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                             QObject* parent)
    : QObject(parent), loop_(loop), store_(store), clock_(clock), asOf_(asOf) {}

void OverviewModel::setIsShown(bool isShown) {
  if (std::exchange(isShown_, isShown) != isShown) {
    Q_EMIT isShownChanged();
    readAgain();
  }
}

void OverviewModel::readAgain() {
  if (!isShown_) {
    return;
  }
  mustReadAgain_ = true;
  if (!std::exchange(isReading_, true)) {
    startOn(loop_, readUntilCurrent());
  }
}

Task<void> OverviewModel::readUntilCurrent() {
  while (std::exchange(mustReadAgain_, false)) {
    const auto asOf = asOf_.value_or(clock_.now());
    try {
      take(co_await store_.ask([asOf](Session& session) { return read(session, asOf); }));
    } catch (...) {
      failure_ = currentFailureInWords().title;
      Q_EMIT changed();
    }
  }
  isReading_ = false;
}

OverviewModel::Reading OverviewModel::read(Session& session, Instant asOf) {
  session.openForShowing();
  return session.readableStore().read([asOf](Connection& connection) {
    const auto overview = contactOverview(asOf, connection);
    auto groups = contactGroups(overview);
    Reading reading;
    reading.asOf = asOf;
    reading.people = static_cast<std::size_t>(std::ranges::count_if(overview, &isDrawable));
    reading.inTouch = groups.inTouch.size();
    reading.drawn = drawnOf(overview, groups);
    const auto firstOf = [](std::vector<ContactSummary>& group) {
      const auto count = group.size();
      group.erase(group.begin() + static_cast<std::ptrdiff_t>(std::min(count, rowsOfAGroup)), group.end());
      return Reading::Group{count, std::move(group)};
    };
    reading.driftedAway = firstOf(groups.driftedAway);
    reading.waitingForUser = firstOf(groups.waitingForUser);
    reading.waitingForThem = firstOf(groups.waitingForThem);
    const SharedNames shared(overview);
    for (const auto* people :
         {&reading.drawn, &reading.driftedAway.first, &reading.waitingForUser.first, &reading.waitingForThem.first}) {
      for (const auto& person : *people) {
        if (const auto address = shared.addressToTell(person.displayName, person.personKey, connection)) {
          reading.addresses.emplace(person.personKey, *address);
        }
      }
    }
    return reading;
  });
}

void OverviewModel::take(const Reading& reading) {
  const auto nameOf = [&reading](const ContactSummary& person) {
    const auto address = reading.addresses.find(person.personKey);
    const auto name = displayText(person.displayName);
    return address == reading.addresses.end()
               ? name
               : tr("%1 (%2)", "a name and an address").arg(name, displayText(address->second));
  };
  const auto rowsOf = [&nameOf](const Reading::Group& group, const auto& factOf) {
    QVariantList rows;
    for (const auto& person : group.first) {
      rows.append(QVariantMap{
          {"personKey", QString::fromStdString(person.personKey)}, {"name", nameOf(person)}, {"fact", factOf(person)}});
    }
    return rows;
  };
  const auto groupOf = [&rowsOf](const QString& title, const QString& nobody, const Reading::Group& group,
                                 const auto& factOf) {
    return QVariantMap{{"title", title},
                       {"nobody", nobody},
                       {"count", static_cast<int>(group.count)},
                       {"people", rowsOf(group, factOf)}};
  };
  const auto lastContact = [](const ContactSummary& person) {
    return tr("last contact %1", "with a date").arg(dateText(person.lastContactAt));
  };
  const auto since = [](const ContactSummary& person) {
    return tr("since %1", "with a date").arg(dateText(person.waitingSince));
  };
  groups_ = {groupOf(tr("Drifted away"), tr("Nobody has drifted away."), reading.driftedAway, lastContact),
             groupOf(tr("They wait for you"), tr("Nobody waits for you."), reading.waitingForUser, since),
             groupOf(tr("You wrote last"), tr("You wait for nobody."), reading.waitingForThem, since)};
  sentence_ = tr("In touch: %1. Drifted away: %2. Waiting for you: %3. Not answered yet: %4.")
                  .arg(reading.inTouch)
                  .arg(reading.driftedAway.count)
                  .arg(reading.waitingForUser.count)
                  .arg(reading.waitingForThem.count);
  peopleCount_ = static_cast<int>(reading.people);
  people_.clear();
  for (const auto& person : reading.drawn) {
    QStringList facts{tr("Last contact %1", "with a date").arg(dateText(person.lastContactAt)),
                      tr("Exchanged: %1 in a year, %2 the year before")
                          .arg(person.exchangedLastYear)
                          .arg(person.exchangedYearBefore)};
    if (person.waiting == WaitingSide::user) {
      facts.append(tr("They wait for you since %1", "with a date").arg(dateText(person.waitingSince)));
    } else if (person.waiting == WaitingSide::them) {
      facts.append(tr("You wrote last, on %1", "with a date").arg(dateText(person.waitingSince)));
    }
    if (person.standing == ContactStanding::driftedAway) {
      facts.append(tr("It has never been quiet for so long"));
    }
    people_.push_back({QString::fromStdString(person.personKey), nameOf(person), facts.join('\n'), person.standing,
                       person.waiting,
                       std::chrono::duration<double, std::ratio<86400>>(reading.asOf - *person.lastContactAt).count(),
                       static_cast<double>(exchangedWith(person))});
  }
  failure_.clear();
  isRead_ = true;
  Q_EMIT changed();
}

} // namespace orvan
