#include "application/session/decision.h"

#include "OrvanPlatform/human_date.h"
#include "application/corrections/action_journal.h"
#include "application/corrections/follow_up_actions.h"
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

/// What was decided for good ends the follow-up that the item is of.
void endFollowUp(const Proposal& proposal, Instant asOf, ChangeRecorder& recorder, Connection& connection) {
  if (!proposal.followUpID) {
    return;
  }
  if (proposal.action.kind() == AttentionItemAction::Kind::resolve) {
    completeFollowUp(*proposal.followUpID, asOf, recorder, connection);
  } else if (proposal.action.kind() == AttentionItemAction::Kind::dismiss) {
    cancelFollowUp(*proposal.followUpID, recorder, connection);
  }
}

} // namespace

Proposal propose(Session& session, const std::string& item, const AttentionItemAction& action, Instant asOf) {
  if (action.until() && *action.until() <= asOf) {
    throw Error(SessionError::snoozeEndPast, "deciding about an item");
  }
  session.openForDeciding();
  auto found = itemCalled(item, session, asOf);
  const auto sight = found.item.itemKey() == item ? Proposal::Sight::named : sightOf(found.item, session);
  auto followUpID = found.followUp ? std::optional{std::move(found.followUp->id)} : std::nullopt;
  return {std::move(found.item), action, sight, std::move(followUpID)};
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
      endFollowUp(proposal, asOf, recorder, connection);
      recordAction(actionFor(proposal, recorder), asOf, connection);
    }
    return Decision{std::move(record), isAsAsked};
  });
}

} // namespace orvan
