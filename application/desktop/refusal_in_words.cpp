#include "application/desktop/refusal_in_words.h"

#include <QCoreApplication>
#include <exception>
#include <optional>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/error_case.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/store_error.h"
#include "application/backup/backup_error.h"
#include "application/desktop/failure_in_words.h"
#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"
#include "application/import/recognition/source_recognition.h"
#include "application/sources/kept_fault.h"
#include "application/store/application_store_error.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

struct Refusal {
  Q_DECLARE_TR_FUNCTIONS(Refusal)
};

QString refusalOf(BackupError error) {
  switch (error) {
    case BackupError::nameTaken:
      return Refusal::tr("There is something with that name already. Name another file; nothing was written over.");
    case BackupError::nameIsTheStores:
      return Refusal::tr("That name is one of the store's own. Name another file.");
    case BackupError::folderMissing:
      return Refusal::tr("There is no such folder. Make it, or name a file in another.");
    case BackupError::folderNotWritable:
      return Refusal::tr("Nothing can be written into that folder. Name a file in another.");
    case BackupError::noRoom:
      return Refusal::tr(
          "There is no room for the backup on that disk. Make room, or name a file on another; nothing "
          "was left there.");
    case BackupError::storeDamaged:
      return Refusal::tr(
          "Parts of the store cannot be read, so there is no new backup. “orvan doctor” in a terminal "
          "tells more.");
    case BackupError::copyDamaged:
      return Refusal::tr(
          "The copy could not be read back as it was written, so it was removed. Check that disk, or name "
          "a file on another.");
    default:
      return Refusal::tr("There is no new backup. “orvan doctor” in a terminal tells more.");
  }
}

QString refusalOf(ApplicationStoreError error) {
  switch (error) {
    case ApplicationStoreError::storeInUse:
      return Refusal::tr("Another Orvan program has the store open. Close it and try again; nothing was changed.");
    case ApplicationStoreError::storeUnchanged:
      return Refusal::tr(
          "The store could not be written anew, so it keeps its key. Make room on the disk and try again.");
    case ApplicationStoreError::storeBusy:
      return Refusal::tr("Another program kept the store busy for too long. Try again; nothing was changed.");
    case ApplicationStoreError::storeReadOnly:
      return Refusal::tr("The store cannot be written. Check that the file and its folder are yours.");
    case ApplicationStoreError::diskFull:
      return Refusal::tr("The disk is full. Make some room and try again; nothing was lost.");
    default:
      return Refusal::tr("That could not be done. “orvan doctor” in a terminal tells what is wrong.");
  }
}

QString refusalOf(CredentialVaultError error) {
  switch (error) {
    case CredentialVaultError::vaultLocked:
      return Refusal::tr("Your keyring is locked. Unlock it with the desktop's password program, and try again.");
    case CredentialVaultError::vaultUnavailable:
      return Refusal::tr(
          "There is no keyring here. Start your desktop's (such as GNOME Keyring, KWallet or KeePassXC), "
          "and try again.");
    case CredentialVaultError::keyExists:
      return Refusal::tr("There is something with that name already. Name another file; nothing was written over.");
    default:
      return Refusal::tr(
          "The key could not be read or written. Check that its folder exists and that the file is yours.");
  }
}

QString refusalOf(WrongSource error) {
  switch (error) {
    case WrongSource::isACalendar:
    case WrongSource::isAMailbox:
    case WrongSource::isContactCards:
      return Refusal::tr("It holds something else than its name says. Give it a name that fits, and add it again.");
    case WrongSource::isADatabase:
      return Refusal::tr(
          "It is a database. Export mail as mbox and calendars as .ics from the program that keeps it, and add those.");
    case WrongSource::isNotText:
      return Refusal::tr(
          "It is neither mail nor a calendar nor contact cards. If it is packed, unpack it and add what is inside.");
    case WrongSource::isAFolder:
      return inWords(SourceFault::holdsNothing);
    case WrongSource::holdsNoMail:
      break;
  }
  return Refusal::tr(
      "There is no mail in it. Name a file in mbox form, in which each mail begins with a line “From …”.");
}

QString refusalOf(const Error& error) {
  const auto& code = error.code();
  if (belongsTo<BackupError>(code)) {
    return refusalOf(static_cast<BackupError>(code.value()));
  }
  if (belongsTo<CredentialVaultError>(code)) {
    return refusalOf(static_cast<CredentialVaultError>(code.value()));
  }
  if (code.category() == agentControlErrorCategory()) {
    return inWords(static_cast<AgentControlError>(code.value()));
  }
  if (belongsTo<ApplicationStoreError>(code)) {
    return refusalOf(static_cast<ApplicationStoreError>(code.value()));
  }
  if (belongsTo<WrongSource>(code)) {
    return refusalOf(static_cast<WrongSource>(code.value()));
  }
  if (const auto sentence = sentenceOnSource(code)) {
    return sourceFaultInWords(*sentence);
  }
  return refusalOf(ApplicationStoreError::cannotReachStore);
}

} // namespace

QString refusalOfCurrentException() {
  try {
    throw;
  } catch (const StoreError& error) {
    return refusalOf(failureOf(error));
  } catch (const Error& error) {
    return refusalOf(error);
  } catch (const std::exception&) {
    return refusalOf(ApplicationStoreError::cannotReadStore);
  }
}

QString inWords(SourceFault fault) {
  switch (fault) {
    case SourceFault::missing:
      return Refusal::tr("There is no such file or folder; check the path.");
    case SourceFault::gone:
      return Refusal::tr("It is not there any more. Bring it back or connect its disk, or remove it here.");
    case SourceFault::notPermitted:
      return Refusal::tr("You may not read it. Change its permissions.");
    case SourceFault::notAFile:
      return Refusal::tr("It is a pipe, a socket or a device. Name a file or a folder.");
    case SourceFault::holdsNothing:
      return Refusal::tr(
          "It holds no mail, calendar or contact cards in a form that Orvan reads. Name the file or folder "
          "that does.");
    case SourceFault::emptied:
      return Refusal::tr(
          "Nothing of what it held is there any more. Bring it back or connect its disk, or remove it "
          "here.");
    case SourceFault::becameSomethingElse:
      return Refusal::tr("It is not what it was when it was added. Remove it here, and add what is there now.");
    case SourceFault::tooLarge:
      return Refusal::tr(
          "There is too much in this folder to look through. Name the folder within it that holds the "
          "mail.");
    case SourceFault::cannotRead:
      break;
  }
  return Refusal::tr(
      "It cannot be read, or changed while it was. Try again, and check the disk if that does not help.");
}

QString inWords(AgentControlError error) {
  switch (error) {
    case AgentControlError::noBus:
      return Refusal::tr("There is no desktop session to remind you in.");
    case AgentControlError::noAgent:
      return Refusal::tr(
          "The reminder service (orvan-agent) does not run. Start it here, or install it if it is missing.");
    case AgentControlError::tooSlow:
    case AgentControlError::left:
      return Refusal::tr("The reminder service did not answer. Try again in a while.");
    case AgentControlError::refused:
      return Refusal::tr("The reminder service did not take that. It may be of another version than this window.");
    case AgentControlError::locked:
      return Refusal::tr("The reminder service cannot read its key. Unlock the desktop's keyring, and try again.");
    case AgentControlError::unusable:
      return Refusal::tr(
          "The reminder service cannot use its file. Its journal tells more: “journalctl --user -u "
          "orvan-agent” in a terminal.");
    case AgentControlError::noNotificationService:
      return Refusal::tr(
          "There is nothing here that shows notifications. Start a notification service, such as dunst or "
          "your desktop's own.");
    case AgentControlError::notYours:
      return Refusal::tr("The reminder service is another user's.");
    case AgentControlError::failed:
      break;
  }
  return Refusal::tr(
      "The reminder service is of another version. Start it anew: “systemctl --user restart orvan-agent” in "
      "a terminal.");
}

QString sourceFaultInWords(std::string_view kept) {
  const auto fault = parseKeptFault(kept);
  if (!fault) {
    return displayText(kept);
  }
  auto words = inWords(fault->fault);
  if (!fault->name.empty()) {
    words = Refusal::tr("%1: %2", "a file and what is wrong with it").arg(shownPath(fault->name), words);
  }
  if (fault->countMore > 0) {
    words = Refusal::tr("%1 And %n more.", "files with which something is wrong", static_cast<int>(fault->countMore))
                .arg(words);
  }
  return words;
}

} // namespace orvan
