#include "application/desktop/failure_in_words.h"

#include <QCoreApplication>
#include <exception>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/store_error.h"
#include "application/session/session_error.h"
#include "application/store/application_store_error.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

struct Failure {
  Q_DECLARE_TR_FUNCTIONS(Failure)
};

/// The fixed text for a list that cannot be made.
QString unavailable() {
  return Failure::tr("Catch-up unavailable");
}

FailureInWords keyMissing() {
  return {Failure::tr("The key to the store is missing"),
          Failure::tr("The store is there, and only its own key opens it. Put the key back where it was, or name a "
                      "copy of it when you start Orvan:"),
          QStringLiteral("orvan-desktop --key-file FILE")};
}

FailureInWords inWords(ApplicationStoreError error) {
  switch (error) {
    case ApplicationStoreError::storeMissing:
      return {Failure::tr("There is no store yet"),
              Failure::tr("It was taken away, or never made. Start Orvan again to make one, or put it back."),
              {}};
    case ApplicationStoreError::storeNewer:
      return {
          Failure::tr("This store belongs to a newer Orvan"),
          Failure::tr("It was last used by a newer version than this one, which must not touch it. Start that version, "
                      "or install the newest. Nothing was changed."),
          {}};
    case ApplicationStoreError::keyMissingForStore:
    case ApplicationStoreError::keyNotInKeyring:
      return keyMissing();
    case ApplicationStoreError::keyMalformed:
    case ApplicationStoreError::cannotDecrypt:
    case ApplicationStoreError::schemaMissing:
    case ApplicationStoreError::storeEmpty:
      return {Failure::tr("The store does not open"),
              Failure::tr("Either this is not the key that it was made with, or the store is damaged. Orvan can tell "
                          "which, and bring it back from a backup:"),
              QStringLiteral("orvan doctor\norvan restore FILE")};
    case ApplicationStoreError::storeNotPrivate:
    case ApplicationStoreError::folderNotPrivate:
      return {
          Failure::tr("Others can look into the store"),
          Failure::tr("Orvan opens it only when you alone can read it. Take that away from others; this tells which "
                      "files are meant:"),
          QStringLiteral("orvan doctor")};
    case ApplicationStoreError::storeBusy:
    case ApplicationStoreError::storeInUse:
      return {
          unavailable(), Failure::tr("Another program has kept the store busy for long. Try again in a moment."), {}};
    case ApplicationStoreError::diskFull:
      return {Failure::tr("The disk is full"), Failure::tr("Make some room, and try again. Nothing was lost."), {}};
    case ApplicationStoreError::storeReadOnly:
    case ApplicationStoreError::cannotCreate:
      return {Failure::tr("The store cannot be written to"),
              Failure::tr("Its folder has to be yours, and on a disk that can be written to. Mend that, and try again. "
                          "Nothing was lost."),
              {}};
    default:
      return {unavailable(), Failure::tr("The store could not be read. This tells what is wrong, and what to do:"),
              QStringLiteral("orvan doctor")};
  }
}

FailureInWords inWords(CredentialVaultError error) {
  switch (error) {
    case CredentialVaultError::keyMissing:
      return keyMissing();
    case CredentialVaultError::vaultLocked:
      return {Failure::tr("Your keyring is locked"),
              Failure::tr("The key to the store lies in the desktop's keyring. Unlock it with the desktop's password "
                          "program, and try again."),
              {}};
    case CredentialVaultError::vaultUnavailable:
      return {
          Failure::tr("There is no keyring"),
          Failure::tr("The key to the store lies in the desktop's keyring, and none is running. Start it, or name a "
                      "copy of the key when you start Orvan:"),
          QStringLiteral("orvan-desktop --key-file FILE")};
    default:
      return {Failure::tr("The key to the store cannot be read"),
              Failure::tr("Its file has to be yours, and readable by you alone. This tells what is wrong:"),
              QStringLiteral("orvan doctor")};
  }
}

template <typename Enumeration>
bool isOf(const std::error_code& code) {
  return code.category() == make_error_code(Enumeration{}).category();
}

FailureInWords inWords(const Error& error) {
  const auto& code = error.code();
  if (isOf<ApplicationStoreError>(code)) {
    return inWords(static_cast<ApplicationStoreError>(code.value()));
  }
  if (isOf<CredentialVaultError>(code)) {
    return inWords(static_cast<CredentialVaultError>(code.value()));
  }
  if (code == SessionError::cannotMakeFolder) {
    return {Failure::tr("The folder for the store could not be made"),
            Failure::tr("The folder around it has to be yours, and on a disk that can be written to."),
            {}};
  }
  return inWords(ApplicationStoreError::cannotReachStore);
}

} // namespace

FailureInWords currentFailureInWords() {
  try {
    throw;
  } catch (const StoreError& error) {
    return inWords(failureOf(error));
  } catch (const Error& error) {
    return inWords(error);
  } catch (const std::exception&) {
    return inWords(ApplicationStoreError::cannotReadStore);
  }
}

bool tellsOfNoStore() {
  try {
    throw;
  } catch (const Error& error) {
    return error.code() == ApplicationStoreError::storeMissing;
  } catch (const std::exception&) {
    return false;
  }
}

} // namespace orvan
