#include "application/desktop/correction_in_words.h"

#include <QCoreApplication>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/error_case.h"
#include "application/corrections/action_journal.h"
#include "application/corrections/person_correction_error.h"
#include "application/desktop/failure_in_words.h"
#include "application/session/session_error.h"

namespace orvan {
namespace {

struct Refusal {
  Q_DECLARE_TR_FUNCTIONS(Refusal)
};

QString inWords(PersonCorrectionError error) {
  switch (error) {
    case PersonCorrectionError::samePerson:
      return Refusal::tr("They are one person already.");
    case PersonCorrectionError::hiddenAndShown:
      return Refusal::tr(
          "You hide one of them and not the other. Show or hide both first, so that it is clear what is "
          "to hold for them.");
    case PersonCorrectionError::addressUnknown:
      return Refusal::tr("Nobody has that address any more.");
    case PersonCorrectionError::onlyAddress:
      return Refusal::tr("That is their only address.");
    case PersonCorrectionError::nameEmpty:
      return Refusal::tr("A name needs a letter.");
  }
  return {};
}

QString inWords(ActionJournalError error) {
  switch (error) {
    case ActionJournalError::changedSince:
      return Refusal::tr("This was changed since, so it stays as it is now.");
    case ActionJournalError::takenBackAlready:
      return Refusal::tr("This was taken back already.");
    case ActionJournalError::actionTooOld:
    case ActionJournalError::nothingToTakeBack:
    case ActionJournalError::actionUnknown:
      return Refusal::tr("This was done too long ago to be taken back.");
    case ActionJournalError::actionFinal:
      return Refusal::tr("What was dismissed or resolved stays so. A new reason brings the person back by itself.");
    case ActionJournalError::actionUnreadable:
      return Refusal::tr("What the store tells of this cannot be read, so it cannot be taken back.");
  }
  return {};
}

QString inWords(SessionError error) {
  switch (error) {
    case SessionError::personUnknown:
      return Refusal::tr("This person is gone meanwhile.");
    case SessionError::reasonStands:
      return Refusal::tr(
          "Only a question and a conversation that waits can be wrong. Dismiss takes any other reason off "
          "the list.");
    case SessionError::conversationUnknown:
      return Refusal::tr("This is part of no conversation.");
    case SessionError::nothingHidden:
      return Refusal::tr("This is shown already.");
    default:
      return Refusal::tr("The reason has changed meanwhile, so nothing was done.");
  }
}

} // namespace

QString refusalOfCorrection() {
  try {
    throw;
  } catch (const Error& error) {
    const auto& code = error.code();
    if (belongsTo<PersonCorrectionError>(code)) {
      return inWords(static_cast<PersonCorrectionError>(code.value()));
    }
    if (belongsTo<ActionJournalError>(code)) {
      return inWords(static_cast<ActionJournalError>(code.value()));
    }
    if (belongsTo<SessionError>(code)) {
      return inWords(static_cast<SessionError>(code.value()));
    }
    return Refusal::tr("Nothing was changed. %1").arg(currentFailureInWords().text);
  } catch (...) {
    return Refusal::tr("Nothing was changed. %1").arg(currentFailureInWords().text);
  }
}

QString inWords(HandingOver outcome) {
  switch (outcome) {
    case HandingOver::done:
      return {};
    case HandingOver::noOpener:
      return Refusal::tr("There is no way to reach your mail program: the desktop's xdg-open is not installed.");
    case HandingOver::noMailProgram:
      return Refusal::tr(
          "No mail program of yours opens single messages. Make one the program for “mid:” addresses in "
          "the desktop's settings.");
    case HandingOver::failed:
      break;
  }
  return Refusal::tr("Your mail program did not open the message.");
}

} // namespace orvan
