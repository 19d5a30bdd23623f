#include "application/session/correction.h"

#include <algorithm>
#include <optional>

#include "application/corrections/action_journal.h"
#include "application/corrections/user_correction.h"
#include "application/corrections/wrong_reason.h"
#include "application/session/reason_in_words.h"

namespace orvan {
namespace {

using Reference = AttentionWhyNowEvidenceReference;

std::string thingInWords(HiddenScope scope, const std::string& name) {
  const auto called = name.empty() ? std::string{} : " \"" + name + "\"";
  switch (scope) {
    case HiddenScope::person:
      return "";
    case HiddenScope::conversation:
      return " the conversation" + called;
    case HiddenScope::mail:
      return " a mail of the conversation" + called;
    case HiddenScope::account:
      return " what came from" + called;
  }
  return "";
}

/// That somebody is hidden is a word about them; the evidence on others is as good as before.
void noteIfPerson(const HidingTarget& target, Instant now, ChangeRecorder& recorder, Connection& connection) {
  if (target.scope == HiddenScope::person) {
    noteCorrection(CorrectionTarget::person, target.targetID, now, recorder, connection);
  }
}

std::optional<std::string> identifierOf(const AttentionCatchUpItem& item, Reference::Kind kind) {
  const auto& references = item.whyNow().evidenceReferences();
  const auto found = std::ranges::find(references, kind, &Reference::kind);
  return found == references.end() ? std::nullopt : std::optional{found->identifier()};
}

/// The open loop, when it stands for a question that was read out of a mail.
std::optional<std::string> questionIn(const FoundItem& found) {
  const auto loopID = identifierOf(found.item, Reference::Kind::openLoop);
  const auto& commitments = found.bundle.commitments();
  const auto commitment = std::ranges::find_if(commitments, [&loopID](const CommitmentEvidence& each) {
    return each.openLoopID() == loopID && each.kind() == "unanswered_question";
  });
  return commitment == commitments.end() ? std::nullopt : loopID;
}

std::optional<std::string> waitingMailIn(const FoundItem& found) {
  return found.item.whyNow().kind() == AttentionWhyNowItem::Kind::openThread
             ? identifierOf(found.item, Reference::Kind::interaction)
             : std::nullopt;
}

template <typename Correct>
std::int64_t correct(Session& session, const AttentionCatchUpItem& item, const std::string& words, Instant asOf,
                     Correct change) {
  return session.writableStore().write([&](Connection& connection) {
    ChangeRecorder recorder(connection);
    change(recorder, connection);
    return recordAction(
        {UserActionKind::wrong, item.personKey(), words + reasonInWords(item.whyNow()), recorder.changes()}, asOf,
        connection);
  });
}

} // namespace

Hiding hide(Session& session, const HidingTarget& target, Instant now) {
  const auto hiding = session.writableStore().write([&](Connection& connection) {
    if (auto thing = hiddenThing(target.scope, target.targetID, connection)) {
      return Hiding{Outcome::wasSo, *std::move(thing), std::nullopt};
    }
    ChangeRecorder recorder(connection);
    hide(target.scope, target.targetID, now, recorder, connection);
    noteIfPerson(target, now, recorder, connection);
    const auto action = recordAction(
        {UserActionKind::hide, target.personID, "hidden" + thingInWords(target.scope, target.name), recorder.changes()},
        now, connection);
    return Hiding{Outcome::done, hiddenThing(target.scope, target.targetID, connection).value(), action};
  });
  session.readAgain();
  return hiding;
}

std::int64_t unhide(Session& session, const HiddenThing& thing, Instant now) {
  const auto action = session.writableStore().write([&](Connection& connection) {
    ChangeRecorder recorder(connection);
    unhide(thing, now, recorder, connection);
    return recordAction({UserActionKind::unhide, thing.personID, "shown again" + thingInWords(thing.scope, thing.name),
                         recorder.changes()},
                        now, connection);
  });
  session.readAgain();
  return action;
}

std::string_view caseName(WrongReason reason) noexcept {
  return reason == WrongReason::noQuestion ? "noQuestion" : "notWaiting";
}

std::optional<WrongReason> wrongReasonIn(const FoundItem& found) {
  if (questionIn(found)) {
    return WrongReason::noQuestion;
  }
  return waitingMailIn(found) ? std::optional{WrongReason::notWaiting} : std::nullopt;
}

Correction sayWrong(Session& session, const std::string& item, Instant asOf) {
  session.openForDeciding();
  auto found = itemCalled(item, session, asOf);
  if (const auto openLoopID = questionIn(found)) {
    const auto action =
        correct(session, found.item, "no question: ", asOf, [&](ChangeRecorder& recorder, Connection& connection) {
          dropQuestion(*openLoopID, asOf, recorder, connection);
        });
    return {WrongReason::noQuestion, std::move(found.item), action};
  }
  if (const auto mailID = waitingMailIn(found)) {
    const auto action =
        correct(session, found.item, "not waiting: ", asOf, [&](ChangeRecorder& recorder, Connection& connection) {
          settleConversation(found.item.personKey(), *mailID, asOf, recorder, connection);
        });
    return {WrongReason::notWaiting, std::move(found.item), action};
  }
  throw Error(SessionError::reasonStands, "taking a reason for wrong");
}

} // namespace orvan
