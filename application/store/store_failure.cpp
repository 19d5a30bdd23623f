#include "application/store/store_failure.h"

#include <sqlite3.h>

#include <cerrno>
#include <optional>

#include "OrvanSpineCore/encrypted_store_error.h"

namespace orvan {
namespace {

std::optional<ApplicationStoreError> knownFailureOf(const std::error_code& reason) {
  switch (reason.value()) {
    case ENOSPC:
    case EDQUOT:
      return ApplicationStoreError::diskFull;
    case EROFS:
      return ApplicationStoreError::storeReadOnly;
    case EMFILE:
    case ENFILE:
    case ENOMEM:
      return ApplicationStoreError::systemExhausted;
    case EAGAIN:
      return ApplicationStoreError::storeBusy;
    case EACCES:
    case EPERM:
      return ApplicationStoreError::cannotReachStore;
    default:
      return std::nullopt;
  }
}

ApplicationStoreError failureOfEngine(int extendedCode) {
  switch (extendedCode & 0xff) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return ApplicationStoreError::cannotDecrypt;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return ApplicationStoreError::storeBusy;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
      return ApplicationStoreError::cannotReachStore;
    case SQLITE_READONLY:
      return ApplicationStoreError::storeReadOnly;
    case SQLITE_FULL:
      return ApplicationStoreError::diskFull;
    case SQLITE_NOMEM:
      return ApplicationStoreError::systemExhausted;
    default:
      return ApplicationStoreError::cannotReadStore;
  }
}

ApplicationStoreError failureOf(EncryptedStoreError error) {
  switch (error) {
    case EncryptedStoreError::storeMissing:
      return ApplicationStoreError::storeMissing;
    case EncryptedStoreError::storeExists:
      return ApplicationStoreError::storeExists;
    case EncryptedStoreError::notRegularFile:
      return ApplicationStoreError::storeNotRegular;
    case EncryptedStoreError::notPrivate:
      return ApplicationStoreError::storeNotPrivate;
    case EncryptedStoreError::plaintext:
      return ApplicationStoreError::plaintextStore;
    case EncryptedStoreError::invalidKeyLength:
      return ApplicationStoreError::keyMalformed;
    case EncryptedStoreError::engineCannotEncrypt:
    case EncryptedStoreError::deletedStaysReadable:
      return ApplicationStoreError::engineCannotEncrypt;
    case EncryptedStoreError::notCanonical:
      return ApplicationStoreError::notOurStore;
    case EncryptedStoreError::empty:
      return ApplicationStoreError::storeEmpty;
    case EncryptedStoreError::schemaOlder: // Stays so only where it could not be moved forward.
      return ApplicationStoreError::storeReadOnly;
    case EncryptedStoreError::schemaNewer:
      return ApplicationStoreError::storeNewer;
  }
  return ApplicationStoreError::cannotReachStore;
}

} // namespace

ApplicationStoreError failureOf(const StoreError& error) {
  if (error.code() == StoreFault::engineCannotEncrypt) {
    return ApplicationStoreError::engineCannotEncrypt;
  }
  if (error.code() == StoreFault::fileReplaced) {
    return ApplicationStoreError::storeReplaced;
  }
  return knownFailureOf(error.systemReason()).value_or(failureOfEngine(error.extendedCode()));
}

ApplicationStoreError failureOfSystem(const std::error_code& reason) {
  return knownFailureOf(reason).value_or(ApplicationStoreError::cannotReachStore);
}

void throwInApplicationWords(const Error& error, const char* attempt) {
  const auto& code = error.code();
  if (const auto* fault = dynamic_cast<const StoreError*>(&error)) {
    throw Error(failureOf(*fault), attempt);
  }
  if (code.category() == make_error_code(EncryptedStoreError{}).category()) {
    throw Error(failureOf(static_cast<EncryptedStoreError>(code.value())), attempt);
  }
  if (code.category() == std::generic_category()) {
    throw Error(failureOfSystem(code), attempt);
  }
  throw error;
}

} // namespace orvan
