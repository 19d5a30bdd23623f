#include "application/desktop/window_model.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/corrections/taking_back.h"
#include "application/desktop/correction_in_words.h"
#include "application/desktop/person_link.h"
#include "application/desktop/snooze_choices.h"
#include "application/desktop/wording.h"
#include "application/session/person_lookup.h"
#include "application/session/snooze_end.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostFound = 50;
/// Meetings come near and snoozes end by time alone.
constexpr auto listStaysTrueFor = 10min;
/// While much is written.
constexpr std::chrono::milliseconds betweenReadings = 2s;

} // namespace

WindowModel::WindowModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                         QObject* parent)
    : QObject(parent), loop_(loop), store_(store), clock_(clock), asOf_(asOf), watch_(store.settings().store) {
  connect(&watch_, &StoreWatch::changed, this, [this] { begin(lookForChanges()); });
  second_.setInterval(1s);
  connect(&second_, &QTimer::timeout, this, &WindowModel::endUndoPeriod);
  minute_.setInterval(1min);
  minute_.setTimerType(Qt::VeryCoarseTimer);
  connect(&minute_, &QTimer::timeout, this, [this] { setIsSeen(true); });
  due_.setSingleShot(true);
  due_.setTimerType(Qt::PreciseTimer);
  connect(&due_, &QTimer::timeout, this, &WindowModel::readListSoon);
}

Instant WindowModel::now() const {
  return asOf_.value_or(clock_.now());
}

void WindowModel::begin(Task<void> task) {
  startOn(loop_, std::move(task));
}

void WindowModel::start(const QString& person) {
  readListSoon();
  if (!person.isEmpty()) {
    chooseCalled(person);
  }
}

void WindowModel::tryAgain() {
  store_.startAgain();
  setPage(Opening);
  readListSoon();
}

void WindowModel::setPage(Page page) {
  if (std::exchange(page_, page) != page || page == Failing) {
    Q_EMIT pageChanged();
  }
}

void WindowModel::fail() {
  if (tellsOfNoStore()) {
    setPage(NoStore);
    return;
  }
  failure_ = currentFailureInWords();
  setPage(Failing);
}

void WindowModel::setIsWrittenTo(StoreUse use) {
  watch_.setDelay(use == StoreUse::busy ? betweenReadings : StoreWatch::usualDelay);
}

void WindowModel::readListSoon() {
  if (isReading_) {
    mustReadAgain_ = true;
    return;
  }
  isReading_ = true;
  begin(readListUntilCurrent());
}

Task<void> WindowModel::readListUntilCurrent() {
  do {
    mustReadAgain_ = false;
    const auto number = ++readingsBegun_;
    const auto asOf = now();
    try {
      take(co_await store_.ask([asOf](Session& session) { return readList(session, asOf); }), number);
    } catch (...) {
      fail();
    }
  } while (mustReadAgain_);
  isReading_ = false;
  watch_.watchWhatIsThere();
}

void WindowModel::take(ListReading reading, std::uint64_t number) {
  reading_ = std::move(reading);
  notShown_.clear();
  for (const auto& person : reading_->list.notShown) {
    notShown_.emplace(person.personKey, person);
  }
  std::erase_if(savings_, [number](const auto& saving) {
    return saving->state == Saving::State::saved && saving->readingsBefore < number;
  });
  setPage(Showing);
  showRows();
  awaitDue(reading_->nextDueAt);
  Q_EMIT listRead();
  Q_EMIT freshnessChanged();
  if (chosen_.isEmpty()) {
    chooseNear(0);
  } else {
    begin(readChosen(chosen_));
  }
}

void WindowModel::awaitDue(std::optional<Instant> nextDueAt) {
  // As far as a timer goes; further, the list is read again for nothing once.
  constexpr std::chrono::milliseconds longest = 24h;
  due_.stop();
  if (nextDueAt && !asOf_) {
    due_.start(std::clamp(std::chrono::ceil<std::chrono::milliseconds>(*nextDueAt - now()), 0ms, longest));
  }
}

bool WindowModel::isDecidedOn(const QString& itemKey) const {
  const auto key = itemKey.toStdString();
  const auto* undoable = decisionToUndo();
  return (undoable != nullptr && undoable->itemKey == key) || std::ranges::any_of(savings_, [&key](const auto& saving) {
           return saving->state != Saving::State::failed && saving->decision.itemKey == key;
         });
}

bool WindowModel::isEnding(const ListedFollowUp& followUp) const {
  const auto& key = followUp.item ? followUp.item->itemKey() : followUp.id;
  const auto isEnd = [&key](const DecisionToSave& decision) {
    const auto* action = std::get_if<AttentionItemAction>(&decision.action);
    return decision.itemKey == key && (action == nullptr || action->kind() != AttentionItemAction::Kind::snooze);
  };
  const auto* undoable = decisionToUndo();
  return (undoable != nullptr && isEnd(*undoable)) || std::ranges::any_of(savings_, [&isEnd](const auto& saving) {
           return saving->state == Saving::State::underWay && isEnd(saving->decision);
         });
}

void WindowModel::showRows() {
  if (!reading_) {
    return;
  }
  std::vector<CatchUpListRow> rows;
  for (const auto& row : reading_->list.rows) {
    auto words = rowInWords(row);
    if ((isOlderOpen_ || row.place.part != ListPart::older) && !isDecidedOn(words.itemKey)) {
      rows.push_back(std::move(words));
    }
  }
  list_.setRows(std::move(rows));
}

int WindowModel::olderCount() const {
  return reading_ ? static_cast<int>(reading_->list.older) : 0;
}

QString WindowModel::olderHeading() {
  return headingOf(ListPart::older);
}

void WindowModel::setIsOlderOpen(bool isOpen) {
  if (std::exchange(isOlderOpen_, isOpen) != isOpen) {
    showRows();
    Q_EMIT isOlderOpenChanged();
  }
}

QString WindowModel::freshness() const {
  return reading_ ? freshnessInWords(reading_->broughtInAt, now()) : QString{};
}

Task<void> WindowModel::lookForChanges() {
  watch_.watchWhatIsThere();
  if (page_ != Showing) {
    tryAgain();
    co_return;
  }
  try {
    const auto version = co_await store_.ask(&dataVersion);
    if (!reading_ || reading_->dataVersion != version) {
      readListSoon();
    }
  } catch (const Error&) {
    // Whatever is wrong shows when the list is read.
    readListSoon();
  }
}

void WindowModel::setIsSeen(bool isSeen) {
  if (!isSeen) {
    minute_.stop();
    return;
  }
  minute_.start();
  Q_EMIT freshnessChanged();
  if (page_ == Showing && reading_ && now() - reading_->asOf > listStaysTrueFor) {
    readListSoon();
  }
}

void WindowModel::choose(const QString& personKey) {
  if (std::exchange(chosen_, personKey) != personKey) {
    Q_EMIT chosenChanged();
  }
  if (personKey.isEmpty()) {
    person_.clear();
  } else {
    begin(readChosen(personKey));
  }
}

void WindowModel::chooseNear(int row) {
  choose(list_.personAt(std::min(row, list_.count() - 1)));
}

Task<void> WindowModel::readChosen(QString personKey) {
  const auto asOf = now();
  try {
    auto reading = co_await store_.ask(
        [key = personKey.toStdString(), asOf](Session& session) { return readPerson(session, key, asOf); });
    if (chosen_ != personKey) {
      co_return;
    }
    if (reading) {
      std::erase_if(reading->followUps, [this](const auto& followUp) { return isEnding(followUp); });
      person_.show(*reading, absenceOf(*reading));
    } else {
      chooseNear(0);
    }
  } catch (...) {
    fail();
  }
}

void WindowModel::chooseCalled(const QString& person) {
  begin(findCalled(person));
}

Task<void> WindowModel::findCalled(QString person) {
  const auto linked = personKeyIn(person.toStdString());
  try {
    choose(QString::fromStdString(co_await store_.ask(
        [text = linked.value_or(person.toStdString())](Session& session) { return session.personKeyOf(text); })));
    Q_EMIT personCalled();
  } catch (const PersonNotFound&) {
    if (linked) {
      tell(tr("Whom the link means is not in this store."));
    } else {
      Q_EMIT nobodyCalled(person);
    }
  } catch (const Error&) { // NOLINT(bugprone-empty-catch): a store that does not open is told of with the list.
  }
}

QString WindowModel::noteOnUndecided(const QString& personKey) const {
  const auto* decision = decisionToUndo();
  return decision != nullptr && decision->personKey == personKey &&
                 std::holds_alternative<AttentionItemAction>(decision->action)
             ? tr("You have just decided about this. Undo brings it back.")
             : QString{};
}

QString WindowModel::absenceOf(const PersonReading& reading) const {
  if (list_.rowOf(QString::fromStdString(reading.personKey)) >= 0) {
    return {};
  }
  if (const auto note = noteOnUndecided(QString::fromStdString(reading.personKey)); !note.isEmpty()) {
    return note;
  }
  if (const auto found = notShown_.find(reading.personKey); found != notShown_.end()) {
    return orvan::inWords(found->second);
  }
  return reading.details ? QString{} : tr("Nothing is waiting between you.");
}

void WindowModel::searchFor(const QString& text) {
  searched_ = text.trimmed();
  opensFirstFound_ = false;
  if (searched_.isEmpty()) {
    foundFor_.clear();
    found_.setPeople({});
  } else {
    begin(findPeople(searched_));
  }
}

void WindowModel::openFirstFound() {
  opensFirstFound_ = foundFor_ != searched_;
  if (!opensFirstFound_ && found_.count() > 0) {
    Q_EMIT firstFound();
  }
}

Task<void> WindowModel::findPeople(QString text) {
  const auto asOf = now();
  try {
    const auto people = co_await store_.ask([plain = text.toStdString(), asOf](Session& session) {
      return orvan::findPeople(session, plain, mostFound, asOf);
    });
    if (searched_ != text) {
      co_return;
    }
    std::vector<FoundPerson> found;
    found.reserve(people.size());
    for (const auto& person : people) {
      found.push_back(inWords(person));
    }
    found_.setPeople(std::move(found));
    foundFor_ = text;
    if (opensFirstFound_) {
      openFirstFound();
    }
  } catch (...) {
    fail();
  }
}

FoundPerson WindowModel::inWords(const ListedPerson& person) const {
  const auto key = QString::fromStdString(person.personKey);
  FoundPerson found{key, displayText(person.displayName), {}, tr("Nothing is waiting between you.")};
  found.addresses = joinedForDisplay(person.addresses);
  if (const auto* row = list_.rowFor(key)) {
    found.standing = row->headline;
  } else if (const auto note = noteOnUndecided(key); !note.isEmpty()) {
    found.standing = note;
  } else if (const auto reason = notShown_.find(person.personKey); reason != notShown_.end()) {
    found.standing = orvan::inWords(reason->second);
  } else if (reading_) {
    const auto& rows = reading_->list.rows;
    const auto closed = std::ranges::find(rows, person.personKey, [](const auto& row) { return row.item.personKey(); });
    if (closed != rows.end()) {
      found.standing = displayText(closed->item.whyNow().headline());
    }
  }
  return found;
}

QVariantList WindowModel::snoozeChoices() const {
  QVariantList choices;
  for (const auto& choice : orvan::snoozeChoices(now())) {
    choices.append(QVariantMap{{"label", choice.label}, {"date", choice.date}, {"day", choice.day}});
  }
  return choices;
}

QString WindowModel::today() const {
  return dayOf(now());
}

void WindowModel::snoozeUntil(const QString& day) {
  const auto asOf = now();
  const auto end = parseSnoozeEnd(day.toStdString(), asOf);
  if (end && *end > asOf) {
    decide(AttentionItemAction::snooze(*end));
  }
}

void WindowModel::dismiss() {
  decide(AttentionItemAction::dismiss());
}

void WindowModel::resolve() {
  decide(AttentionItemAction::resolve());
}

void WindowModel::decide(const AttentionItemAction& action) {
  const auto* row = list_.rowFor(chosen_);
  if (row == nullptr) {
    return;
  }
  beginUndoPeriod(DecisionToSave{row->personKey, row->displayName, row->itemKey.toStdString(), action});
}

void WindowModel::endFollowUp(const QString& followUpID, FollowUpToEnd::End end) {
  const auto shown = person_.followUps();
  const auto found =
      std::ranges::find(shown, QVariant{followUpID}, [](const auto& followUp) { return followUp.toMap().value("id"); });
  if (found != shown.end()) {
    beginUndoPeriod(DecisionToSave{person_.personKey(), person_.displayName(),
                                   found->toMap().value("itemKey").toString().toStdString(),
                                   FollowUpToEnd{followUpID.toStdString(), end}});
  }
}

void WindowModel::onFollowUpEnded(std::function<void(const std::string&)> handler) {
  followUpEnded_ = std::move(handler);
}

void WindowModel::beginUndoPeriod(const DecisionToSave& decision) {
  const int place = list_.rowOf(chosen_);
  told_.clear();
  hasTriedToClose_ = false;
  // This one takes the place of what could not be saved about the same matter.
  std::erase_if(savings_, [&decision](const auto& saving) {
    return saving->state == Saving::State::failed && saving->decision.itemKey == decision.itemKey;
  });
  if (auto earlier = undoPeriod_.begin(decision, clock_.monotonicNow())) {
    saveDecisionIn(*std::move(earlier));
  }
  second_.start();
  showRows();
  if (place >= 0 && list_.rowOf(chosen_) < 0) {
    chooseNear(place);
  } else {
    choose(chosen_);
  }
  Q_EMIT noticeChanged();
  Q_EMIT secondsToUndoChanged();
}

void WindowModel::undo() {
  const auto undoable = undoPeriod_.take();
  if (!undoable) {
    return;
  }
  second_.stop();
  if (const auto* correction = std::get_if<SavedCorrection>(&*undoable)) {
    begin(takeBack(*correction));
  } else {
    showRows();
    choose(std::get<DecisionToSave>(*undoable).personKey);
  }
  Q_EMIT noticeChanged();
}

Task<void> WindowModel::takeBack(SavedCorrection correction) {
  const auto asOf = now();
  try {
    const auto entry = co_await store_.ask([number = correction.action, asOf](Session& session) {
      auto taken =
          session.writableStore().write([&](Connection& connection) { return undoAction(number, asOf, connection); });
      session.readAgain();
      return taken;
    });
    if (entry.kind == UserActionKind::hide || entry.kind == UserActionKind::unhide) {
      Q_EMIT visibilityChanged();
    }
    choose(correction.personKey);
  } catch (...) {
    tell(refusalOfCorrection());
  }
  readListSoon();
}

void WindowModel::saveBeforeAnotherAction() {
  told_.clear();
  if (auto earlier = undoPeriod_.take()) {
    second_.stop();
    saveDecisionIn(*std::move(earlier));
  }
  Q_EMIT noticeChanged();
}

void WindowModel::offerUndo(SavedCorrection correction) {
  hasTriedToClose_ = false;
  if (auto earlier = undoPeriod_.begin(std::move(correction), clock_.monotonicNow())) {
    saveDecisionIn(*std::move(earlier));
  }
  second_.start();
  readListSoon();
  Q_EMIT noticeChanged();
  Q_EMIT secondsToUndoChanged();
}

void WindowModel::chooseNeighbourOf(const QString& personKey) {
  const int row = list_.rowOf(personKey);
  if (chosen_ == personKey && row >= 0) {
    choose(list_.personAt(row + 1 < list_.count() ? row + 1 : row - 1));
  }
}

const DecisionToSave* WindowModel::decisionToUndo() const {
  const auto& undoable = undoPeriod_.decision();
  return undoable ? std::get_if<DecisionToSave>(&*undoable) : nullptr;
}

void WindowModel::saveDecisionIn(Undoable undoable) {
  if (auto* decision = std::get_if<DecisionToSave>(&undoable)) {
    save(std::move(*decision));
  }
}

void WindowModel::endUndoPeriod() {
  if (auto due = undoPeriod_.takeDue(clock_.monotonicNow())) {
    second_.stop();
    saveDecisionIn(*std::move(due));
    Q_EMIT noticeChanged();
  } else {
    Q_EMIT secondsToUndoChanged();
  }
}

int WindowModel::secondsToUndo() const {
  return static_cast<int>(undoPeriod_.left(clock_.monotonicNow()).count());
}

void WindowModel::save(DecisionToSave decision) {
  give(savings_.emplace_back(std::make_shared<Saving>(std::move(decision))));
}

void WindowModel::give(const std::shared_ptr<Saving>& saving) {
  saving->state = Saving::State::underWay;
  // The window may be gone by then.
  store_.post([this, &loop = loop_, saving, followUpEnded = followUpEnded_, asOf = now()](Session& session) {
    const auto outcome =
        saving->isDone ? SavingOutcome{SavingEnd::saved} : orvan::save(saving->decision, session, asOf);
    saving->isDone = outcome.end != SavingEnd::failed;
    if (outcome.endedFollowUp && followUpEnded) {
      followUpEnded(*outcome.endedFollowUp);
    }
    loop.post([this, saving, end = outcome.end] { ended(saving, end); });
  });
}

void WindowModel::ended(const std::shared_ptr<Saving>& saving, SavingEnd end) {
  if (end == SavingEnd::failed) {
    saving->state = Saving::State::failed;
    showRows();
  } else {
    saving->state = Saving::State::saved;
    saving->readingsBefore = readingsBegun_;
    readListSoon();
  }
  if (end == SavingEnd::lapsed) {
    told_ = lapsedInWords(saving->decision);
  }
  Q_EMIT noticeChanged();
  goOnClosing();
}

QString WindowModel::lapsedInWords(const DecisionToSave& decision) {
  const auto text = std::holds_alternative<FollowUpToEnd>(decision.action)
                        ? tr("The follow-up was over already, so nothing was done: %1")
                        : tr("The reason has changed meanwhile, so nothing was done: %1");
  return text.arg(decision.displayName);
}

bool WindowModel::hasUnsaved() const {
  return std::ranges::any_of(savings_, [](const auto& saving) { return saving->state == Saving::State::failed; });
}

void WindowModel::saveAgain() {
  for (const auto& saving : savings_) {
    if (saving->state == Saving::State::failed) {
      give(saving);
    }
  }
  showRows();
  Q_EMIT noticeChanged();
}

void WindowModel::tell(const QString& text) {
  told_ = text;
  Q_EMIT noticeChanged();
}

void WindowModel::forgetNotice() {
  told_.clear();
  Q_EMIT noticeChanged();
}

WindowModel::Notice WindowModel::notice() const {
  if (hasUnsaved()) {
    return CouldNotSave;
  }
  if (undoPeriod_.decision()) {
    return CanUndo;
  }
  return told_.isEmpty() ? NoNotice : Told;
}

QString WindowModel::noticeText() const {
  switch (notice()) {
    case CouldNotSave:
      return tr("Couldn't save — try again");
    case CanUndo:
      return orvan::inWords(*undoPeriod_.decision());
    case Told:
      return told_;
    case NoNotice:
      break;
  }
  return {};
}

void WindowModel::saveAtEnd() {
  if (auto undoable = undoPeriod_.take()) {
    saveDecisionIn(*std::move(undoable));
  }
  saveAgain();
}

bool WindowModel::mayClose() {
  const bool isGivenUp = hasTriedToClose_ && decisionToUndo() == nullptr;
  saveAtEnd();
  const bool isUnderWay =
      std::ranges::any_of(savings_, [](const auto& saving) { return saving->state == Saving::State::underWay; });
  isClosing_ = isUnderWay && !isGivenUp;
  return !isClosing_;
}

void WindowModel::goOnClosing() {
  const bool isUnderWay =
      std::ranges::any_of(savings_, [](const auto& saving) { return saving->state == Saving::State::underWay; });
  if (!isClosing_ || isUnderWay) {
    return;
  }
  isClosing_ = false;
  hasTriedToClose_ = hasUnsaved();
  if (!hasTriedToClose_) {
    Q_EMIT readyToClose();
  }
}

} // namespace orvan
