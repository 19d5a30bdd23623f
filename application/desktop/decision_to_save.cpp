#include "application/desktop/decision_to_save.h"

#include <exception>

#include "OrvanPlatform/error.h"
#include "application/corrections/follow_up_actions.h"
#include "application/session/decision.h"
#include "application/session/session_error.h"

namespace orvan {
namespace {

/// Whether the error tells of the matter and not of the store.
bool meansLapsed(const Error& error) {
  return error.code().category() == make_error_code(SessionError{}).category();
}

SavingOutcome saveAction(const std::string& itemKey, const AttentionItemAction& action, Session& session,
                         Instant asOf) {
  const auto proposal = propose(session, itemKey, action, asOf);
  const bool isAsAsked = decide(session, proposal, asOf).isAsAsked;
  const bool endsFollowUp = isAsAsked && action.kind() != AttentionItemAction::Kind::snooze;
  return {SavingEnd::saved, endsFollowUp ? proposal.followUpID : std::nullopt};
}

SavingOutcome saveEnd(const FollowUpToEnd& followUp, Session& session, Instant asOf) {
  const bool isEnded = session.writableStore().write([&](Connection& connection) {
    return followUp.end == FollowUpToEnd::End::completed ? completeFollowUp(followUp.id, asOf, connection)
                                                         : cancelFollowUp(followUp.id, asOf, connection);
  });
  // Whoever ended it before may have left its reminder to us.
  return {isEnded ? SavingEnd::saved : SavingEnd::lapsed, followUp.id};
}

} // namespace

SavingOutcome save(const DecisionToSave& decision, Session& session, Instant asOf) noexcept {
  try {
    if (const auto* followUp = std::get_if<FollowUpToEnd>(&decision.action)) {
      return saveEnd(*followUp, session, asOf);
    }
    return saveAction(decision.itemKey, std::get<AttentionItemAction>(decision.action), session, asOf);
  } catch (const Error& error) {
    return {meansLapsed(error) ? SavingEnd::lapsed : SavingEnd::failed};
  } catch (const std::exception&) {
    return {SavingEnd::failed};
  }
}

} // namespace orvan
