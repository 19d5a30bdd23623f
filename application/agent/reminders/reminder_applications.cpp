#include "application/agent/reminders/reminder_applications.h"

#include <utility>

namespace orvan {

bool allowsReminders(AuthorizationStatus status) noexcept {
  return status == AuthorizationStatus::authorized || status == AuthorizationStatus::provisional;
}

ReminderApplications::ReminderApplications(ReminderFile& file) : file_(file) {
  for (auto& application : file.applications()) {
    numbers_.emplace(application.identifier, application.number);
    byNumber_.emplace(application.number, std::move(application));
  }
}

const ReminderApplication* ReminderApplications::find(std::string_view identifier) const {
  const auto number = numbers_.find(identifier);
  return number == numbers_.end() ? nullptr : &byNumber_.at(number->second);
}

bool ReminderApplications::mayPresent(std::int64_t number) const {
  const auto application = byNumber_.find(number);
  return application != byNumber_.end() && allowsReminders(application->second.status);
}

const ReminderApplication& ReminderApplications::note(const std::string& identifier, const std::string& displayName) {
  const auto* known = find(identifier);
  if (known == nullptr || known->displayName != displayName) {
    keep(identifier, displayName, known == nullptr ? AuthorizationStatus::notDetermined : known->status);
  }
  return *find(identifier);
}

bool ReminderApplications::decide(const std::string& identifier, const std::string& displayName,
                                  AuthorizationStatus status) {
  const auto* known = find(identifier);
  const auto former = known == nullptr ? AuthorizationStatus::notDetermined : known->status;
  keep(identifier, displayName, status);
  return former != status;
}

void ReminderApplications::keep(const std::string& identifier, const std::string& displayName,
                                AuthorizationStatus status) {
  const auto number = file_.keep(identifier, displayName, status);
  numbers_.insert_or_assign(identifier, number);
  byNumber_.insert_or_assign(
      number,
      ReminderApplication{.number = number, .identifier = identifier, .displayName = displayName, .status = status});
}

} // namespace orvan
