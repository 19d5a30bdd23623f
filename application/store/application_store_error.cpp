#include "application/store/application_store_error.h"

#include <string>

namespace orvan {
namespace {

class ApplicationStoreCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "application store"; }
  std::string message(int code) const override {
    switch (static_cast<ApplicationStoreError>(code)) {
      case ApplicationStoreError::storeMissing:
        return "There is no store yet; make one with 'orvan init'.";
      case ApplicationStoreError::storeExists:
        return "There is a store already; it was left as it is.";
      case ApplicationStoreError::keyMissingForStore:
        return "There is a store but no key for it; put its key back, because a new one could not open it.";
      case ApplicationStoreError::keyMalformed:
        return "The store key is not 32 bytes long; name the right file with --key-file.";
      case ApplicationStoreError::keyNotInKeyring:
        return "The desktop's keyring does not hold the store's key any more; bring its keyring back, or name a copy "
               "of the key with --key-file.";
      case ApplicationStoreError::plaintextStore:
        return "The file is an SQLite database without encryption and is not used as a store; name another with "
               "--store.";
      case ApplicationStoreError::cannotDecrypt:
        return "The store cannot be opened with this key: name the key it was made with, or, if it is "
               "damaged, restore it with 'orvan restore FILE'.";
      case ApplicationStoreError::schemaMissing:
        return "The store lacks tables that it must have; restore it with 'orvan restore FILE', or make a new one "
               "with 'orvan init' under another name.";
      case ApplicationStoreError::notOurStore:
        return "The file is encrypted with this key but is no store of orvan's; name another with --store.";
      case ApplicationStoreError::storeEmpty:
        return "The store holds nothing at all, as after an 'orvan init' that was interrupted; remove the file and run "
               "'orvan init' again.";
      case ApplicationStoreError::storeNewer:
        return "The store was written by a newer orvan than this one; use that, or install the newest.";
      case ApplicationStoreError::storeNotRegular:
        return "The store, its log (-wal) or the log's index (-shm) is a folder, a pipe or a device; name the store's "
               "file with --store.";
      case ApplicationStoreError::storeNotPrivate:
        return "The store file, its log (-wal) or the log's index (-shm) is not yours alone; own them, take away what "
               "others may do with 'chmod 600', and try again.";
      case ApplicationStoreError::folderNotPrivate:
        return "Others than you can look into the folder of the store; take that away with 'chmod 700' and try again.";
      case ApplicationStoreError::cannotReachStore:
        return "The store file cannot be opened; check that it and its folder are yours.";
      case ApplicationStoreError::storeBusy:
        return "Another program kept the store busy for too long; try again.";
      case ApplicationStoreError::storeInUse:
        return "Another Orvan program has the store open; close the others and try again: nothing was changed.";
      case ApplicationStoreError::storeUnchanged:
        return "The store could not be written anew, so it keeps its key; make room on the disk and try again.";
      case ApplicationStoreError::storeReadOnly:
        return "The store cannot be written; check that the file and its folder are yours.";
      case ApplicationStoreError::diskFull:
        return "The disk is full; make room and try again: nothing was lost.";
      case ApplicationStoreError::systemExhausted:
        return "The system has no more memory or open files to give; close other programs and try again: nothing was "
               "lost.";
      case ApplicationStoreError::storeReplaced:
        return "Another file took the store's place while it was in use; try again, and let one program at a time put "
               "files there.";
      case ApplicationStoreError::cannotReadStore:
        return "The system failed to read or write the store; check the disk and try again.";
      case ApplicationStoreError::cannotCreate:
        return "The store could not be created; check that its folder exists and can be written.";
      case ApplicationStoreError::engineCannotEncrypt:
        return "The SQLite library in use cannot encrypt; start the program without preloading another SQLite.";
    }
    return "unknown store error";
  }
};

} // namespace

std::error_code make_error_code(ApplicationStoreError error) noexcept {
  static const ApplicationStoreCategory category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
