#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "application/agent/reminders/reminder_file.h"

namespace orvan {

/// Who may present. A denied application keeps all that it has.
bool allowsReminders(AuthorizationStatus status) noexcept;

/// The applications of a reminder file, which must outlive this. What it returns holds until the application is changed
/// here.
class ReminderApplications {
 public:
  explicit ReminderApplications(ReminderFile& file);

  /// Null when there is none.
  const ReminderApplication* find(std::string_view identifier) const;
  /// One that the file has reminders of.
  const ReminderApplication& numbered(std::int64_t number) const { return byNumber_.at(number); }
  bool mayPresent(std::int64_t number) const;
  const std::map<std::int64_t, ReminderApplication>& all() const noexcept { return byNumber_; }

  /// Notes one that is new, and a new display name.
  const ReminderApplication& note(const std::string& identifier, const std::string& displayName);
  /// Notes what the user decided. Whether that changed anything.
  bool decide(const std::string& identifier, const std::string& displayName, AuthorizationStatus status);

 private:
  void keep(const std::string& identifier, const std::string& displayName, AuthorizationStatus status);

  ReminderFile& file_;
  std::map<std::int64_t, ReminderApplication> byNumber_;
  std::map<std::string, std::int64_t, std::less<>> numbers_;
};

} // namespace orvan
