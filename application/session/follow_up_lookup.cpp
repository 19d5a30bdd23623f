#include "application/session/follow_up_lookup.h"

#include <algorithm>

#include "application/session/item_lookup.h"

namespace orvan {
namespace {

constexpr std::size_t fewestLetters = 4;

[[noreturn]] void fail(SessionError error) {
  throw Error(error, "looking for a follow-up");
}

bool isCalled(const ListedFollowUp& followUp, const std::string& text) {
  const bool isItsBeginning =
      text.size() >= fewestLetters && (followUp.id.starts_with("follow-up:" + text) || followUp.id.starts_with(text));
  return followUp.id == text || isItsBeginning || (followUp.item && followUp.item->itemKey() == text);
}

/// By what is a follow-up's own; nothing when that names none.
std::vector<ListedFollowUp> calledByItself(const std::string& text, Session& session) {
  auto followUps = session.readableStore().read(
      [](Connection& connection) { return orvan::followUps(FollowUpChoice::all, connection); });
  std::erase_if(followUps, [&](const ListedFollowUp& followUp) { return !isCalled(followUp, text); });
  return followUps;
}

std::vector<ListedFollowUp> ofPersonCalled(const std::string& text, FollowUpState state, Session& session) {
  const auto personKey = session.personKeyOf(text);
  auto followUps = session.readableStore().read(
      [&](Connection& connection) { return followUpsOf(personKey, FollowUpChoice::all, connection); });
  std::erase_if(followUps, [&](const ListedFollowUp& followUp) { return followUp.state != state; });
  return followUps;
}

} // namespace

ListedFollowUp followUpCalled(const std::string& text, FollowUpState state, Session& session) {
  auto found = calledByItself(text, session);
  if (found.empty() && isItemKey(text)) {
    fail(SessionError::followUpUnknown);
  }
  if (found.empty()) {
    found = ofPersonCalled(text, state, session);
  }
  if (found.empty()) {
    fail(SessionError::followUpUnknown);
  }
  if (found.size() > 1) {
    throw SeveralFollowUps(std::move(found));
  }
  if (found.front().state != state) {
    fail(SessionError::followUpElsewhere);
  }
  return std::move(found.front());
}

} // namespace orvan
