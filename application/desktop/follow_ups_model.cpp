#include "application/desktop/follow_ups_model.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "application/desktop/wording.h"

namespace orvan {
namespace {

/// The new follow-up's id; nothing when the store did not take it.
std::optional<std::string> addTo(Session& session, const NewFollowUp& followUp, Instant asOf) noexcept {
  try {
    return session.writableStore().write(
        [&](Connection& connection) { return addFollowUp(followUp, asOf, connection); });
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

} // namespace

FollowUpsModel::FollowUpsModel(QtLoop& loop, StoreThread& store, WindowReminders& reminders, WindowModel& window,
                               const Clock& clock, std::optional<Instant> asOf, QObject* parent)
    : QObject(parent), loop_(loop), store_(store), reminders_(reminders), window_(window), clock_(clock), asOf_(asOf) {
  window_.onFollowUpEnded([&reminders](const std::string& followUpID) { reminders.withdraw(followUpID); });
}

QVariantList FollowUpsModel::choices() {
  offered_ = reminderChoices(now());
  QVariantList choices;
  for (const auto& choice : offered_) {
    choices.append(QVariantMap{{"label", choice.label}, {"detail", orvan::momentInWords(choice.moment)}});
  }
  return choices;
}

QString FollowUpsModel::momentInWords(const QString& day, const QString& time) const {
  const auto moment = reminderMoment(day, time, now());
  return moment ? orvan::momentInWords(*moment) : QString{};
}

void FollowUpsModel::remindAtChoice(int choice, const QString& about) {
  if (choice >= 0 && choice < std::ssize(offered_)) {
    remind(offered_[static_cast<std::size_t>(choice)].moment, about);
  }
}

void FollowUpsModel::remindAt(const QString& day, const QString& time, const QString& about) {
  if (const auto moment = reminderMoment(day, time, now())) {
    remind(*moment, about);
  }
}

void FollowUpsModel::remind(Instant dueAt, const QString& about) {
  const auto& person = *window_.person();
  if (person.personKey().isEmpty()) {
    return;
  }
  const auto said = about.trimmed();
  const auto text = said.isEmpty() ? tr("Get back to %1").arg(person.displayName()) : said;
  const NewFollowUp followUp{
      .personID = person.personKey().toStdString(), .dueAt = dueAt, .text = text.toStdString(), .interactionID = {}};
  // A menu may stay open for long.
  if (FollowUpScheduler::followUpRefusal(followUp.text, followUp.dueAt, now())) {
    window_.tell(tr("That time has passed."));
  } else {
    add(followUp, person.displayName());
  }
}

/// Each step starts the next by itself, for the window may close at any time.
void FollowUpsModel::add(const NewFollowUp& followUp, const QString& displayName) {
  auto tellEnd = [this, &loop = loop_, displayName, dueAt = followUp.dueAt](const ReminderEnd& end) {
    loop.post([=, this] { window_.tell(inWords(end, displayName, dueAt)); });
  };
  store_.post([this, &loop = loop_, &reminders = reminders_, followUp, asOf = now(),
               tellEnd = std::move(tellEnd)](Session& session) {
    const auto id = addTo(session, followUp, asOf);
    if (id) {
      reminders.set(*id, tellEnd);
    }
    loop.post([this, isNoted = id.has_value()] { added(isNoted); });
  });
}

void FollowUpsModel::added(bool isNoted) {
  if (!isNoted) {
    window_.tell(tr("Couldn't save — try again"));
    return;
  }
  window_.readAgain();
  Q_EMIT noted();
}

Task<std::optional<ListedFollowUp>> FollowUpsModel::find(std::string followUpID) {
  co_return co_await store_.ask([followUpID](Session& session) {
    return session.readableStore().read([&](Connection& connection) { return followUpWithID(followUpID, connection); });
  });
}

void FollowUpsModel::showPersonOf(const std::string& followUpID) {
  startOn(loop_, showWhenFound(followUpID));
}

Task<void> FollowUpsModel::showWhenFound(std::string followUpID) {
  try {
    if (const auto followUp = co_await find(std::move(followUpID))) {
      window_.chooseCalled(QString::fromStdString(followUp->personKey));
    }
  } catch (const Error&) { // NOLINT(bugprone-empty-catch): a store that does not open is told of with the list.
  }
}

Task<bool> FollowUpsModel::tellsOf(std::string followUpID) {
  const auto followUp = co_await find(std::move(followUpID));
  // On the list, it is from now on.
  window_.readAgain();
  if (!followUp || window_.chosen() != QString::fromStdString(followUp->personKey)) {
    co_return false;
  }
  window_.tell(tr("Now is when you wanted to get back to %1: %2")
                   .arg(displayText(followUp->displayName), displayText(followUp->said.value_or(""))));
  co_return true;
}

void FollowUpsModel::complete(const QString& followUpID) {
  window_.endFollowUp(followUpID, FollowUpToEnd::End::completed);
}

void FollowUpsModel::cancel(const QString& followUpID) {
  window_.endFollowUp(followUpID, FollowUpToEnd::End::cancelled);
}

} // namespace orvan
