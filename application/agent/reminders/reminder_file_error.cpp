#include "application/agent/reminders/reminder_file_error.h"

#include <string>

namespace orvan {
namespace {

class ReminderFileCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.reminder-file"; }

  std::string message(int code) const override {
    switch (static_cast<ReminderFileError>(code)) {
      case ReminderFileError::inUse:
        return "Another Orvan agent keeps the reminders; there can be one at a time.";
      case ReminderFileError::newer:
        return "The reminders were written by a newer Orvan than this one; use that, or install the newest.";
      case ReminderFileError::keyMissing:
        return "There are reminders but no key for them; put 'reminders.key' back, or remove 'reminders.db' to begin "
               "anew.";
      case ReminderFileError::notPrivate:
        return "The reminders' files are not yours alone; own them, take away what others may do with 'chmod 600', and "
               "try again.";
      case ReminderFileError::cannotMakeFolder:
        return "The folder for the reminders cannot be made; check that the one above it is yours.";
      case ReminderFileError::unusable:
        return "The reminders cannot be read or written; check the disk, and that 'reminders.db' and its folder are "
               "yours.";
    }
    return "unknown";
  }
};

} // namespace

std::error_code make_error_code(ReminderFileError error) noexcept {
  static const ReminderFileCategory category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
