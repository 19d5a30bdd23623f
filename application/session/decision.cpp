#include "application/session/decision.h"

#include "OrvanPlatform/human_date.h"
#include "application/corrections/action_journal.h"
#include "application/session/item_lookup.h"
#include "application/session/reason_in_words.h"
#include "application/session/shown_items.h"

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

Proposal::Sight sightOf(const AttentionCatchUpItem& item, Session& session) {
  const auto shown = session.readableStore().read(
      [&item](Connection& connection) { return keyShownOf(item.personKey(), connection); });
  if (!shown) {
    return Proposal::Sight::neverShown;
  }
  return *shown == item.itemKey() ? Proposal::Sight::shown : Proposal::Sight::otherShown;
}

/// What the journal says of it.
UserAction actionFor(const Proposal& proposal, const ChangeRecorder& recorder) {
  const auto reason = ": " + reasonInWords(proposal.item.whyNow());
  const auto& person = proposal.item.personKey();
  switch (proposal.action.kind()) {
    case AttentionItemAction::Kind::dismiss:
      return {UserActionKind::dismiss, person, "dismissed" + reason, recorder.changes()};
    case AttentionItemAction::Kind::resolve:
      return {UserActionKind::resolve, person, "resolved" + reason, recorder.changes()};
    case AttentionItemAction::Kind::snooze:
      break;
  }
  return {UserActionKind::snooze, person, "snoozed until " + humanDateText(*proposal.action.until()) + reason,
          recorder.changes()};
}

} // namespace

Proposal propose(Session& session, const std::string& item, const AttentionItemAction& action, Instant asOf) {
  if (action.until() && *action.until() <= asOf) {
    throw Error(SessionError::snoozeEndPast, "deciding about an item");
  }
  session.openForDeciding();
  auto found = itemCalled(item, session, asOf).item;
  const auto sight = found.itemKey() == item ? Proposal::Sight::named : sightOf(found, session);
  return {std::move(found), action, sight};
}

Decision decide(Session& session, const Proposal& proposal, Instant asOf) {
  return session.writableStore().write([&](Connection& connection) {
    ChangeRecorder recorder(connection);
    // The candidate comes first: taking back goes the other way, and a disposition needs its candidate.
    recorder.watch(ChangedTable::candidate, {proposal.item.itemKey()});
    recorder.watch(ChangedTable::disposition, {proposal.item.itemKey()});
    auto record = AttentionDispositionStore::apply(proposal.item, proposal.action, asOf, connection);
    const bool isAsAsked = record.state().kind() == stateAfter(proposal.action.kind());
    if (isAsAsked) {
      recordAction(actionFor(proposal, recorder), asOf, connection);
    }
    return Decision{std::move(record), isAsAsked};
  });
}

} // namespace orvan
