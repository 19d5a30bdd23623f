#include "application/desktop/hidden_things_model.h"

#include <QVariantMap>
#include <algorithm>
#include <utility>

#include "application/desktop/wording.h"
#include "application/session/correction.h"

namespace orvan {
namespace {

struct HidingWords {
  Q_DECLARE_TR_FUNCTIONS(HidingWords)
};

QString conversationInWords(const HiddenThing& thing) {
  const auto subject = displayText(thing.name);
  const auto whom = displayText(thing.personName.value_or(""));
  if (subject.isEmpty()) {
    return whom.isEmpty() ? HidingWords::tr("A conversation") : HidingWords::tr("A conversation with %1").arg(whom);
  }
  return whom.isEmpty() ? HidingWords::tr("The conversation “%1”").arg(subject)
                        : HidingWords::tr("The conversation “%1” with %2").arg(subject, whom);
}

QString mailInWords(const HiddenThing& thing) {
  const auto subject = displayText(thing.name);
  const auto whom = displayText(thing.personName.value_or(""));
  if (subject.isEmpty()) {
    return whom.isEmpty() ? HidingWords::tr("A mail that waits for nothing")
                          : HidingWords::tr("A mail from %1, which waits for nothing").arg(whom);
  }
  return whom.isEmpty() ? HidingWords::tr("The mail “%1”, which waits for nothing").arg(subject)
                        : HidingWords::tr("The mail “%1” from %2, which waits for nothing").arg(subject, whom);
}

QString hiddenInWords(const HiddenThing& thing) {
  switch (thing.scope) {
    case HiddenScope::person:
      return displayText(thing.name.empty() ? thing.targetID : thing.name);
    case HiddenScope::conversation:
      return conversationInWords(thing);
    case HiddenScope::mail:
      return mailInWords(thing);
    case HiddenScope::account:
      break;
  }
  return HidingWords::tr("What came from %1 (%2)").arg(displayText(thing.name), displayText(thing.targetID));
}

} // namespace

Task<void> HiddenThingsModel::refresh() {
  hidden_ = co_await tools().store.ask([](Session& session) { return session.readableStore().read(hiddenThings); });
  QVariantList things;
  for (const auto& thing : hidden_) {
    things.push_back(QVariantMap{
        {"key", displayText(thing.key)},
        {"name", hiddenInWords(thing)},
        {"since", tr("Hidden since %1").arg(dateOf(thing.since))},
    });
  }
  if (std::exchange(things_, things) != things) {
    Q_EMIT changed();
  }
  setGlance(things.isEmpty() ? tr("Nobody is hidden") : tr("%1 hidden").arg(things.size()));
}

void HiddenThingsModel::showAgain(const QString& key) {
  const auto thing = std::ranges::find(hidden_, key.toStdString(), &HiddenThing::key);
  if (thing != hidden_.end()) {
    begin(unhide(*thing));
  }
}

Task<void> HiddenThingsModel::unhide(HiddenThing thing) {
  co_await tools().store.ask([thing, now = tools().now()](Session& session) {
    const auto isStillHidden = session.readableStore().read(
        [&](Connection& connection) { return hiddenThing(thing.scope, thing.targetID, connection).has_value(); });
    if (isStillHidden) {
      orvan::unhide(session, thing, now);
    }
  });
  say(tr("Shown again: %1").arg(hiddenInWords(thing)));
  co_await refresh();
  Q_EMIT storeChanged();
}

} // namespace orvan
