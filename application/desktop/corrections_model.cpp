#include "application/desktop/corrections_model.h"

#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/corrections/action_journal.h"
#include "application/corrections/person_corrections.h"
#include "application/corrections/taking_back.h"
#include "application/desktop/correction_in_words.h"
#include "application/desktop/store_readings.h"
#include "application/desktop/wording.h"
#include "application/process/mail_program.h"
#include "application/session/correction.h"
#include "application/session/hiding_lookup.h"
#include "application/session/item_lookup.h"
#include "application/session/message_address.h"
#include "application/session/session_error.h"

namespace orvan {
namespace {

constexpr std::size_t mostOthers = 50;
constexpr std::chrono::seconds patienceWithMailProgram{2};

std::int64_t showPersonAgain(const std::string& personKey, Session& session, Instant now) {
  const auto thing = session.readableStore().read(
      [&personKey](Connection& connection) { return hiddenThing(HiddenScope::person, personKey, connection); });
  if (!thing) {
    throw Error(SessionError::nothingHidden, "showing somebody again");
  }
  return unhide(session, *thing, now);
}

std::int64_t takeLatestSnoozeBack(const std::string& personKey, Instant now, Connection& connection) {
  const auto entries = actionHistory(now, connection);
  const auto snooze = std::ranges::find_if(entries, [&personKey](const JournalEntry& entry) {
    return entry.kind == UserActionKind::snooze && entry.personID == personKey &&
           entry.state == JournalEntry::State::standing;
  });
  if (snooze == entries.end()) {
    throw Error(ActionJournalError::actionTooOld, "ending a snooze");
  }
  return undoAction(snooze->number, now, connection).number;
}

/// The mail program finds the message by it; nothing when it is not known.
std::optional<std::string> messageAddressOfItem(const std::string& itemKey, Session& session, Instant asOf) {
  session.openForReading();
  const auto found = itemCalled(itemKey, session, asOf);
  const auto about =
      session.readableStore().read([&found](Connection& connection) { return aboutOf(found, connection); });
  return about.messageID ? std::optional{messageAddressOf(*about.messageID)} : std::nullopt;
}

template <typename Things, typename Key, typename KeyOf>
bool isAmong(const Things& things, const Key& key, KeyOf keyOf) {
  return std::ranges::find(things, key, keyOf) != std::ranges::end(things);
}

/// Those who may be the same as the person.
std::vector<FoundPerson> suggestedFor(const std::string& personKey, std::span<const MergeSuggestion> suggestions) {
  std::vector<FoundPerson> found;
  for (const auto& suggestion : suggestions) {
    if (!isAmong(suggestion.people, personKey, &SuggestedPerson::personID)) {
      continue;
    }
    for (const auto& person : suggestion.people) {
      if (person.personID != personKey) {
        found.push_back({QString::fromStdString(person.personID), displayText(person.displayName),
                         joinedForDisplay(person.addresses), inWords(suggestion.ground)});
      }
    }
  }
  return found;
}

struct Candidates {
  std::vector<MergeSuggestion> suggestions;
  std::vector<ListedPerson> people;
};

Candidates readCandidates(Session& session, const std::string& text, Instant asOf) {
  Candidates candidates;
  if (text.empty()) {
    candidates.suggestions =
        session.readableStore().read([](Connection& connection) { return mergeSuggestions(connection); });
  }
  candidates.people = findPeople(session, text, mostOthers, asOf);
  return candidates;
}

std::vector<FoundPerson> inOrder(const Candidates& candidates, const std::string& personKey) {
  auto found = suggestedFor(personKey, candidates.suggestions);
  for (const auto& person : candidates.people) {
    const auto key = QString::fromStdString(person.personKey);
    if (person.personKey != personKey && !isAmong(found, key, &FoundPerson::personKey)) {
      found.push_back({key, displayText(person.displayName), joinedForDisplay(person.addresses), {}});
    }
  }
  return found;
}

Task<HandingOver> handToDesktop(std::string address) {
  co_return handToMailProgram(address, patienceWithMailProgram);
}

} // namespace

CorrectionsModel::CorrectionsModel(QtLoop& loop, StoreThread& store, WindowModel& window, QObject* parent)
    : QObject(parent), loop_(loop), store_(store), window_(window) {}

void CorrectionsModel::correct(const QString& personKey, Wording wording, Effect effect, Work work) {
  window_.saveBeforeAnotherAction();
  startOn(loop_, run(personKey, std::move(wording), effect, std::move(work)));
}

Task<void> CorrectionsModel::run(QString personKey, Wording wording, Effect effect, Work work) {
  const auto now = window_.now();
  try {
    const auto action = co_await store_.ask([work, now](Session& session) { return work(session, now); });
    if (!action) {
      window_.tell(wording.wasSo);
      co_return;
    }
    if (effect == Effect::mayLeave || effect == Effect::hides) {
      window_.chooseNeighbourOf(personKey);
    }
    window_.offerUndo({*action, personKey, wording.done});
    if (effect == Effect::hides || effect == Effect::shows) {
      Q_EMIT visibilityChanged();
    }
  } catch (...) {
    window_.tell(refusalOfCorrection());
    window_.readAgain();
  }
}

void CorrectionsModel::hide(const QString& personKey, const QString& displayName) {
  correct(personKey, {tr("Hidden: %1").arg(displayName), tr("Hidden already: %1").arg(displayName)}, Effect::hides,
          [key = personKey.toStdString(), name = displayName.toStdString()](Session& session, Instant now) {
            return orvan::hide(session, {HiddenScope::person, key, name, key}, now).action;
          });
}

void CorrectionsModel::showAgain(const QString& personKey, const QString& displayName) {
  correct(personKey, {tr("Shown again: %1").arg(displayName), {}}, Effect::shows,
          [key = personKey.toStdString()](Session& session, Instant now) {
            return std::optional{showPersonAgain(key, session, now)};
          });
}

void CorrectionsModel::hideConversation(const QString& personKey, const QString& displayName, const QString& itemKey) {
  correct(personKey, {tr("Hidden: a conversation with %1").arg(displayName), tr("Hidden already: %1").arg(displayName)},
          Effect::hides, [item = itemKey.toStdString()](Session& session, Instant now) {
            return orvan::hide(session, hidingTargetCalled(item, session, now), now).action;
          });
}

void CorrectionsModel::showThingAgain(const QString& personKey, const QString& displayName, const QString& thing) {
  correct(personKey, {tr("Shown again: a conversation with %1").arg(displayName), {}}, Effect::shows,
          [key = thing.toStdString()](Session& session, Instant now) {
            return std::optional{unhide(session, hiddenThingCalled(key, session), now)};
          });
}

void CorrectionsModel::makeOne(const QString& personKey, const QString& displayName, const QString& otherKey,
                               const QString& otherName) {
  correct(personKey, {tr("One person now: %1 and %2").arg(displayName, otherName), {}}, Effect::none,
          [key = personKey.toStdString(), other = otherKey.toStdString()](Session& session, Instant now) {
            return session.writableStore().write([&](Connection& connection) {
              return std::optional{mergePeopleForUser(key, std::span{&other, 1}, now, connection)};
            });
          });
}

void CorrectionsModel::splitOff(const QString& personKey, const QString& address) {
  correct(personKey, {tr("A person of its own now: %1").arg(address), {}}, Effect::none,
          [own = address.toStdString()](Session& session, Instant now) {
            return session.writableStore().write(
                [&](Connection& connection) { return std::optional{splitAddress(own, now, connection).action}; });
          });
}

void CorrectionsModel::rename(const QString& personKey, const QString& displayName, const QString& name) {
  const auto newName = name.trimmed();
  if (newName == displayName) {
    return;
  }
  if (newName.isEmpty()) {
    correct(personKey,
            {tr("Called as mail says: no longer %1").arg(displayName),
             tr("Called as mail says already: %1").arg(displayName)},
            Effect::none, [key = personKey.toStdString()](Session& session, Instant now) {
              return session.writableStore().write(
                  [&](Connection& connection) { return giveNameBackForUser(key, now, connection); });
            });
    return;
  }
  correct(personKey, {tr("Renamed: %1").arg(newName), {}}, Effect::none,
          [key = personKey.toStdString(), text = newName.toStdString()](Session& session, Instant now) {
            return session.writableStore().write(
                [&](Connection& connection) { return std::optional{renamePersonForUser(key, text, now, connection)}; });
          });
}

void CorrectionsModel::sayWrong(const QString& personKey, const QString& displayName, const QString& itemKey) {
  correct(personKey, {tr("Noted that this was wrong: %1").arg(displayName), {}}, Effect::mayLeave,
          [item = itemKey.toStdString()](Session& session, Instant now) {
            return std::optional{orvan::sayWrong(session, item, now).action};
          });
}

void CorrectionsModel::bringBack(const QString& personKey, const QString& displayName) {
  window_.saveBeforeAnotherAction();
  startOn(loop_, takeSnoozeBack(personKey, displayName));
}

Task<void> CorrectionsModel::takeSnoozeBack(QString personKey, QString displayName) {
  const auto now = window_.now();
  try {
    co_await store_.ask([key = personKey.toStdString(), now](Session& session) {
      return session.writableStore().write(
          [&](Connection& connection) { return takeLatestSnoozeBack(key, now, connection); });
    });
    window_.tell(tr("Back on the list: %1").arg(displayName));
  } catch (...) {
    window_.tell(refusalOfCorrection());
  }
  window_.readAgain();
}

void CorrectionsModel::lookForSame(const QString& personKey, const QString& text) {
  personOfOthers_ = personKey;
  textOfOthers_ = text.trimmed();
  startOn(loop_, findOthers(personOfOthers_, textOfOthers_));
}

Task<void> CorrectionsModel::findOthers(QString personKey, QString text) {
  const auto now = window_.now();
  try {
    const auto candidates = co_await store_.ask(
        [plain = text.toStdString(), now](Session& session) { return readCandidates(session, plain, now); });
    if (personOfOthers_ == personKey && textOfOthers_ == text) {
      others_.setPeople(inOrder(candidates, personKey.toStdString()));
    }
  } catch (...) {
    window_.tell(refusalOfCorrection());
  }
}

void CorrectionsModel::openMessage(const QString& itemKey) {
  startOn(loop_, handOver(itemKey));
}

Task<void> CorrectionsModel::handOver(QString itemKey) {
  const auto now = window_.now();
  try {
    auto address = co_await store_.ask(
        [item = itemKey.toStdString(), now](Session& session) { return messageAddressOfItem(item, session, now); });
    if (!address) {
      window_.tell(tr("There is no message to open: Orvan knows by name only mail to you."));
      co_return;
    }
    if (!desktop_) {
      desktop_.emplace();
    }
    const auto outcome = co_await runOn(desktop_->get(), handToDesktop(*std::move(address)));
    if (const auto words = inWords(outcome); !words.isEmpty()) {
      window_.tell(words);
    }
  } catch (...) {
    window_.tell(refusalOfCorrection());
  }
}

} // namespace orvan
