#include "application/desktop/decision_to_save.h"

#include <exception>

#include "OrvanPlatform/error.h"
#include "application/session/decision.h"
#include "application/session/session_error.h"

namespace orvan {
namespace {

/// Whether the error tells of the matter and not of the store.
bool meansLapsed(const Error& error) {
  return error.code().category() == make_error_code(SessionError{}).category();
}

} // namespace

SavingEnd save(const DecisionToSave& decision, Session& session, Instant asOf) noexcept {
  try {
    decide(session, propose(session, decision.itemKey, decision.action, asOf), asOf);
    return SavingEnd::saved;
  } catch (const Error& error) {
    return meansLapsed(error) ? SavingEnd::lapsed : SavingEnd::failed;
  } catch (const std::exception&) {
    return SavingEnd::failed;
  }
}

} // namespace orvan
