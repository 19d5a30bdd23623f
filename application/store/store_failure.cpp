#include "application/store/store_failure.h"

#include <sqlite3.h>

#include <cerrno>
#include <optional>

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

} // namespace orvan
