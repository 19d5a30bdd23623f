#include "application/backup/backup_error.h"

#include <string>

namespace orvan {
namespace {

class BackupCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "backup"; }
  std::string message(int code) const override {
    switch (static_cast<BackupError>(code)) {
      case BackupError::nameTaken:
        return "There is something with that name already; name another file: nothing was written over.";
      case BackupError::nameIsTheStores:
        return "That name is one of the store's own; name another file.";
      case BackupError::folderMissing:
        return "There is no such folder; make it, or name a file in another.";
      case BackupError::folderNotWritable:
        return "Nothing can be written into that folder; name a file in another.";
      case BackupError::noRoom:
        return "There is no room for the backup on that disk; make room, or name a file on another: nothing was left "
               "there.";
      case BackupError::storeDamaged:
        return "Parts of the store cannot be read, so there is no new backup; 'orvan doctor' tells more, and 'orvan "
               "restore FILE' brings back an earlier one.";
      case BackupError::copyDamaged:
        return "The copy could not be read back as it was written, so it was removed; check that disk, or name a file "
               "on another.";
      case BackupError::backupMissing:
        return "There is no such file; name the backup to restore from.";
      case BackupError::backupNotRegular:
        return "That is a folder, a pipe or a device; name the backup's file.";
      case BackupError::backupUnreachable:
        return "The backup cannot be read there; make it readable to you, or copy it into a folder of yours.";
      case BackupError::backupIsTheStore:
        return "That file is the store itself; name a backup of it.";
      case BackupError::noKey:
        return "There is no key to open the backup with; name the file that holds it with --key.";
      case BackupError::wrongKey:
        return "The backup cannot be opened with this key; name the key that its store had then with --key, or another "
               "backup if this one is damaged.";
      case BackupError::plaintext:
        return "The file is an SQLite database without encryption and no backup of orvan's; name another.";
      case BackupError::notOurs:
        return "The file is encrypted with this key but is no backup of orvan's; name another.";
      case BackupError::newer:
        return "The backup was made by a newer orvan than this one; use that, or install the newest.";
      case BackupError::backupDamaged:
        return "Parts of the backup cannot be read, so nothing was changed; name another.";
    }
    return "unknown backup error";
  }
};

} // namespace

std::error_code make_error_code(BackupError error) noexcept {
  static const BackupCategory category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
