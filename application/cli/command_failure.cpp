#include "application/cli/command_failure.h"

#include <exception>
#include <new>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/error_case.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler_error.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/store_error.h"
#include "application/backup/backup_error.h"
#include "application/corrections/action_journal.h"
#include "application/corrections/person_correction_error.h"
#include "application/session/hiding_lookup.h"
#include "application/session/item_lookup.h"
#include "application/session/reason_in_words.h"
#include "application/store/application_store_error.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

std::string sentenceOf(CredentialVaultError error) {
  switch (error) {
    case CredentialVaultError::keyMissing:
      return "There is no store key; make key and store with 'orvan init', or name the key with --key-file.";
    case CredentialVaultError::vaultLocked:
      return "The desktop keyring is locked; unlock it, by logging in or with the desktop's password program, and try "
             "again.";
    case CredentialVaultError::vaultUnavailable:
      return "There is no desktop keyring to ask for the store key; start one in this session, or use a key file with "
             "--key-file.";
    case CredentialVaultError::accessFailed:
      return "The store key could not be read or written; check that its folder exists and that the file is yours.";
    case CredentialVaultError::keyFileNotPrivate:
      return "Others than you can read the key file, or it is not yours; take that away with 'chmod 600' and try "
             "again.";
    case CredentialVaultError::keyExists:
      return "There is a key already; it was left as it is.";
    case CredentialVaultError::keyFileNotRegular:
      return "The key file is a folder, a pipe or a device; name the file that holds the key with --key-file.";
  }
  return "The store key could not be loaded.";
}

std::string sentenceOf(const StoreError& error) {
  const auto failure = failureOf(error);
  switch (failure) {
    case ApplicationStoreError::cannotDecrypt: // It was opened with the key.
      return "The store is damaged; restore it with 'orvan restore FILE' ('orvan doctor' tells more).";
    case ApplicationStoreError::cannotReadStore:
      return "The store could not be read or written (" + error.code().message() + "); 'orvan doctor' tells more.";
    default:
      return make_error_code(failure).message();
  }
}

ExitCode codeOf(CredentialVaultError error) {
  return error == CredentialVaultError::keyExists ? ExitCode::failed : ExitCode::cannotOpen;
}

bool concernsOpening(ApplicationStoreError error) {
  switch (error) {
    case ApplicationStoreError::storeExists:
    case ApplicationStoreError::cannotCreate:
    case ApplicationStoreError::storeInUse:
    case ApplicationStoreError::storeUnchanged:
      return false;
    default:
      return true;
  }
}

CommandFailure commandFailureOf(ApplicationStoreError error) {
  return {concernsOpening(error) ? ExitCode::cannotOpen : ExitCode::failed, make_error_code(error).message()};
}

CommandFailure commandFailureOf(BackupError error) {
  const bool isOpening = error == BackupError::wrongKey || error == BackupError::noKey;
  return {isOpening ? ExitCode::cannotOpen : ExitCode::failed, make_error_code(error).message()};
}

std::string sentenceOf(SessionError error) {
  switch (error) {
    case SessionError::personUnknown:
      return "Nobody has that key, name or address; 'orvan people TEXT' finds people by a part of their name or "
             "address.";
    case SessionError::personAmbiguous:
      return "Several people go by that name; name the one you mean by address ('orvan people' lists them).";
    case SessionError::noReasonNow:
      return "There is no reason to get in touch with that person now; 'orvan catch-up' shows the list.";
    case SessionError::reasonChanged:
      return "The reason has changed meanwhile, so nothing was done; 'orvan catch-up' shows the list.";
    case SessionError::snoozeEndPast:
      return "A snooze has to end in the future; nothing was changed.";
    case SessionError::personHidden:
      return "That person is hidden; 'orvan unhide PERSON' shows them again.";
    case SessionError::conversationUnknown:
      return "That item is part of no conversation; hide the person, or dismiss the item.";
    case SessionError::nothingHidden:
      return "Nothing that is hidden goes by that; 'orvan hidden' lists what is.";
    case SessionError::severalMeant:
      return "Several things go by that; name the one you mean by its key.";
    case SessionError::reasonStands:
      return "Only a question and a conversation that waits can be wrong; 'orvan dismiss' takes any other reason off "
             "the list for good.";
    case SessionError::followUpUnknown:
      return "There is no such follow-up; 'orvan follow-up list --all' lists them with their ids.";
    case SessionError::followUpAmbiguous:
      return "Several follow-ups go by that; name the one you mean by its id.";
    case SessionError::followUpElsewhere:
      return "That follow-up is not in a state for this; 'orvan follow-up list --all' tells how each stands, 'orvan "
             "follow-up reopen' schedules a completed one again.";
    case SessionError::cannotMakeFolder:
      return "The folder for the store could not be made; choose another with --store.";
  }
  return "That could not be done.";
}

std::string sentenceOf(ActionJournalError error) {
  switch (error) {
    case ActionJournalError::actionUnknown:
      return "There is no action of that number; 'orvan history' lists them.";
    case ActionJournalError::nothingToTakeBack:
      return "There is nothing to take back; 'orvan history' lists what you did.";
    case ActionJournalError::takenBackAlready:
      return "That was taken back already; 'orvan history' lists what you did.";
    case ActionJournalError::actionFinal:
      return "What was dismissed or resolved stays so for good; a new reason brings the person back by itself.";
    case ActionJournalError::actionTooOld:
      return "That was done more than 30 days ago and cannot be taken back any more.";
    case ActionJournalError::changedSince:
      return "That was changed since by what was imported, so it cannot be taken back any more.";
    case ActionJournalError::actionUnreadable:
      return "What the store tells of that action cannot be read, so it cannot be taken back.";
  }
  return "That could not be taken back.";
}

std::string sentenceOf(PersonCorrectionError error) {
  switch (error) {
    case PersonCorrectionError::samePerson:
      return "That is one person already; name two different people.";
    case PersonCorrectionError::hiddenAndShown:
      return "One of them is hidden and another is not; hide or unhide one first ('orvan hide', 'orvan unhide'), so "
             "that it is clear what holds for both.";
    case PersonCorrectionError::addressUnknown:
      return "Nobody has that address; 'orvan people TEXT' finds addresses by a part of them.";
    case PersonCorrectionError::onlyAddress:
      return "That is the only address of the person, so there is nothing to take it away from.";
    case PersonCorrectionError::nameEmpty:
      return "A name needs a letter; put one with blanks in quotes.";
  }
  return "That could not be put right.";
}

CommandFailure commandFailureOf(const ReasonChanged& error) {
  return {ExitCode::failed,
          "The reason has changed meanwhile, so nothing was done. It is now: " + reasonInWords(error.current())};
}

CommandFailure commandFailureOf(const SeveralMeant& error) {
  std::string sentence = "Several things go by that; name the one you mean:";
  for (const auto& option : error.options()) {
    sentence += (&option == &error.options().front() ? " " : ", ") + printableText(option);
  }
  return {ExitCode::failed, sentence + "."};
}

CommandFailure commandFailureOf(const ChangedSince& error) {
  if (!error.by()) {
    return {ExitCode::failed, sentenceOf(ActionJournalError::changedSince)};
  }
  const auto since = "That was changed since by action " + std::to_string(error.by()->number);
  return {ExitCode::failed,
          since + (isFinal(error.by()->kind) ? ", which is final, so it stays as it is." : "; take that back first.")};
}

CommandFailure commandFailureOf(const Error& error) {
  const auto& code = error.code();
  if (belongsTo<ApplicationStoreError>(code)) {
    return commandFailureOf(static_cast<ApplicationStoreError>(code.value()));
  }
  if (belongsTo<BackupError>(code)) {
    return commandFailureOf(static_cast<BackupError>(code.value()));
  }
  if (belongsTo<CredentialVaultError>(code)) {
    const auto vaultError = static_cast<CredentialVaultError>(code.value());
    return {codeOf(vaultError), sentenceOf(vaultError)};
  }
  if (code == AttentionEvidenceCompilerError::plaintextDatabaseRejected) {
    return commandFailureOf(ApplicationStoreError::plaintextStore);
  }
  if (belongsTo<ActionJournalError>(code)) {
    return {ExitCode::failed, sentenceOf(static_cast<ActionJournalError>(code.value()))};
  }
  if (belongsTo<PersonCorrectionError>(code)) {
    return {ExitCode::failed, sentenceOf(static_cast<PersonCorrectionError>(code.value()))};
  }
  if (belongsTo<SessionError>(code)) {
    return {ExitCode::failed, sentenceOf(static_cast<SessionError>(code.value()))};
  }
  // The library's own connections open after the application's has told a wrong key from everything else.
  return commandFailureOf(ApplicationStoreError::cannotReachStore);
}

} // namespace

CommandFailure failureOfCurrentException() {
  try {
    throw;
  } catch (const CommandFailure& failure) {
    return failure;
  } catch (const StoreError& error) {
    return {ExitCode::failed, sentenceOf(error)};
  } catch (const ReasonChanged& error) {
    return commandFailureOf(error);
  } catch (const ChangedSince& error) {
    return commandFailureOf(error);
  } catch (const SeveralMeant& error) {
    return commandFailureOf(error);
  } catch (const Error& error) {
    return commandFailureOf(error);
  } catch (const std::bad_alloc&) {
    return {ExitCode::failed, "There is not enough memory for this."};
  } catch (const std::exception&) {
    return {ExitCode::failed, "Something unexpected went wrong; 'orvan doctor' may tell what."};
  }
}

} // namespace orvan
