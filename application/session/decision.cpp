#include "application/session/decision.h"

#include "application/session/item_lookup.h"

namespace orvan {
namespace {

AttentionItemState::Kind stateAfter(AttentionItemAction::Kind action) {
  switch (action) {
    case AttentionItemAction::Kind::snooze:
      return AttentionItemState::Kind::snoozed;
    case AttentionItemAction::Kind::dismiss:
      return AttentionItemState::Kind::dismissed;
    case AttentionItemAction::Kind::resolve:
      return AttentionItemState::Kind::resolved;
  }
  return AttentionItemState::Kind::active;
}

} // namespace

Decision decide(Session& session, const std::string& item, const AttentionItemAction& action, Instant asOf) {
  if (action.until() && *action.until() <= asOf) {
    throw Error(SessionError::snoozeEndPast, "deciding about an item");
  }
  session.openForDeciding();
  const auto found = itemCalled(item, session, asOf);
  auto& store = session.dispositions();
  auto record = waitFor(store.executor(), store.apply(found.item, action, asOf));
  const bool isAsAsked = record.state().kind() == stateAfter(action.kind());
  return {std::move(record), isAsAsked};
}

} // namespace orvan
