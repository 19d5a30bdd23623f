#pragma once

#include <filesystem>
#include <memory>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/database_queue.h"
#include "application/agent/reminders/reminder_file_error.h"
#include "application/store/store_key.h"

namespace orvan {

/// Where the reminders are kept.
struct ReminderPaths {
  std::filesystem::path file;
  std::filesystem::path keyFile;
  /// Held by whoever has the file open. The file itself must not be opened to be locked.
  std::filesystem::path lock;

  /// "reminders.db" and its companions in the folder of the store.
  static ReminderPaths besideStore(const std::filesystem::path& store);
};

/// What became of the file when it was opened.
enum class ReminderFileOrigin {
  opened,
  /// There was none.
  made,
  /// There was one that cannot be read. It lies under another name now, and an empty one took its place.
  madeAfterDamage,
};

/// A file of the user's that one program at a time has.
class ProgramLock {
 public:
  /// Throws ReminderFileError::inUse when another program has it, also when that is another lock of this process.
  explicit ProgramLock(const std::filesystem::path& file);
  ~ProgramLock();
  ProgramLock(const ProgramLock&) = delete;
  ProgramLock& operator=(const ProgramLock&) = delete;

 private:
  int descriptor_;
};

/// Opens the reminders' file for its only user, or makes it: whole or not at all, with a new key that is kept in
/// `placeOfNewKey` unless there is one, in a folder that is the user's alone. Every page of a file that is there is
/// read. One that is damaged, or that its key does not fit, is set aside as "reminders.db.damaged-" and the time of
/// `now`; of those the two latest stay.
///
/// Throws Error with a ReminderFileError, or with what StoreKey throws.
class OpenedReminderFile {
 public:
  OpenedReminderFile(const ReminderPaths& paths, KeyPlace placeOfNewKey, Instant now);

  ReminderFileOrigin origin() const noexcept { return origin_; }
  DatabaseQueue& queue() noexcept { return *queue_; }

 private:
  /// Destroyed last: the connection is closed while nobody else may open one.
  std::unique_ptr<ProgramLock> lock_;
  ReminderFileOrigin origin_ = ReminderFileOrigin::opened;
  std::unique_ptr<DatabaseQueue> queue_;
};

} // namespace orvan
