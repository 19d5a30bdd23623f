#include "application/desktop/person_model.h"

#include <algorithm>
#include <utility>

#include "application/desktop/wording.h"

namespace orvan {
namespace {

std::vector<ConversationRow> rowsOf(const Conversation& conversation) {
  std::vector<ConversationRow> rows;
  rows.reserve(conversation.exchanges.size());
  for (const auto& exchange : conversation.exchanges) {
    rows.push_back({.date = dateOf(exchange.occurredAt),
                    .writer = writerOf(exchange),
                    .isOwn = exchange.kind == Exchange::Kind::sent,
                    .words = wordsOf(exchange),
                    .isQuestion = exchange.question.has_value(),
                    .sentence = sentenceOf(exchange)});
  }
  return rows;
}

QVariantList followUpsInWords(const std::vector<ListedFollowUp>& followUps) {
  QVariantList shown;
  for (const auto& followUp : followUps) {
    const auto& key = followUp.item ? followUp.item->itemKey() : followUp.id;
    shown.append(QVariantMap{{"id", QString::fromStdString(followUp.id)},
                             {"itemKey", QString::fromStdString(key)},
                             {"due", momentInWords(followUp.dueAt)},
                             {"said", displayText(followUp.said.value_or(""))}});
  }
  return shown;
}

bool isInConversation(const std::optional<std::string>& question, const Conversation& conversation) {
  return question &&
         std::ranges::find(conversation.exchanges, question, &Exchange::question) != conversation.exchanges.end();
}

} // namespace

PersonModel::PersonModel(QObject* parent) : QObject(parent) {}

PersonModel::Shown PersonModel::inWords(const PersonReading& reading) {
  Shown shown;
  shown.personKey = QString::fromStdString(reading.personKey);
  shown.displayName = displayText(reading.displayName);
  shown.contact = ContactPicture(reading.history);
  shown.followUps = followUpsInWords(reading.followUps);
  shown.addresses = joinedForDisplay(reading.addresses);
  shown.choices = choicesFor(reading);
  if (!reading.details) {
    return shown;
  }
  const auto& details = *reading.details;
  shown.itemKey = QString::fromStdString(details.item.itemKey());
  if (!isInConversation(details.about.question, details.conversation)) {
    shown.question = displayText(details.about.question.value_or(""));
  }
  shown.subject = displayText(details.about.subject.value_or(""));
  shown.meeting = meetingInWords(details.about);
  shown.earlierExchanges = static_cast<int>(details.conversation.earlier);
  for (const auto& matter : details.others) {
    shown.otherMatters.append(orvan::inWords(matter));
  }
  for (const auto& record : details.records) {
    shown.decisions.append(orvan::inWords(record.state()));
  }
  return shown;
}

void PersonModel::show(const PersonReading& reading, const QString& absence) {
  auto shown = inWords(reading);
  shown.absence = absence;
  if (reading.details) {
    set(std::move(shown), reading.details->item.whyNow(), rowsOf(reading.details->conversation));
  } else {
    set(std::move(shown), std::nullopt, {});
  }
}

void PersonModel::clear() {
  set({}, std::nullopt, {});
}

void PersonModel::set(Shown shown, std::optional<AttentionWhyNowItem> reason,
                      std::vector<ConversationRow> conversation) {
  conversation_.show(std::move(conversation));
  if (whyNow_.item() != reason) {
    whyNow_.setItem(std::move(reason));
  }
  if (std::exchange(shown_, shown) != shown) {
    Q_EMIT changed();
  }
}

} // namespace orvan
