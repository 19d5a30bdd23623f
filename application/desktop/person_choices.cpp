#include "application/desktop/person_choices.h"

#include <algorithm>

#include "application/desktop/wording.h"

namespace orvan {
namespace {

bool isSnoozed(const ItemDetails& details) {
  return std::ranges::any_of(details.records, [&details](const auto& record) {
    return record.itemKey() == details.item.itemKey() && record.state().kind() == AttentionItemState::Kind::snoozed;
  });
}

} // namespace

PersonChoices choicesFor(const PersonReading& reading) {
  PersonChoices choices;
  choices.isHidden = reading.isHidden;
  for (const auto& address : reading.addresses) {
    choices.addresses.append(displayText(address));
  }
  for (const auto& thing : reading.hiddenThings) {
    choices.hiddenThings.append(QVariantMap{{"key", QString::fromStdString(thing.key)}, {"words", inWords(thing)}});
  }
  if (reading.details) {
    const auto& details = *reading.details;
    choices.canBeNoQuestion = details.canBeWrong == WrongReason::noQuestion;
    choices.canBeNotWaiting = details.canBeWrong == WrongReason::notWaiting;
    choices.hasConversation = details.about.threadID.has_value();
    choices.hasMessage = details.about.messageID.has_value();
    choices.isSnoozed = isSnoozed(details);
  }
  return choices;
}

} // namespace orvan
