#include "application/agent/reminders/reminder_popups.h"

#include <openssl/evp.h>

#include <array>
#include <cstddef>

namespace orvan {
namespace {

constexpr std::string_view generalTitle = "Follow-up reminder";

PopupAction action(std::string_view key, std::string_view label) {
  return {.key = std::string{key}, .label = std::string{label}};
}

/// The same for the same parts, and nothing of them can be read from it.
std::string tagFor(std::string_view kind, std::string_view application, std::string_view identifier) {
  std::string parts;
  for (const auto part : {kind, application, identifier}) {
    parts.append(part).push_back('\0');
  }
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  EVP_Digest(parts.data(), parts.size(), digest.data(), nullptr, EVP_sha256(), nullptr);
  constexpr std::string_view digits = "0123456789abcdef";
  constexpr std::size_t bytesTaken = 12;
  std::string tag = "orvan-";
  for (std::size_t at = 0; at < bytesTaken; ++at) {
    tag += digits[digest.at(at) >> 4U];
    tag += digits[digest.at(at) & 0xfU];
  }
  return tag;
}

std::string countedReminders(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " follow-up reminder" : " follow-up reminders");
}

Popup groupPopup(const Presentation& presentation, const ReminderApplication& application) {
  return {.tag = tagFor("group", application.identifier, std::to_string(presentation.number)),
          .applicationName = application.displayName,
          .summary = countedReminders(presentation.reminders.size()),
          .body = {},
          .actions = {action(reminder_action::open, "Open"), action(reminder_action::later, "Later")}};
}

} // namespace

Popup popupFor(const Presentation& presentation, const ReminderApplication& application, ReminderOwner owner,
               TitleDisclosure titles) {
  if (presentation.kind == PresentationKind::group) {
    return groupPopup(presentation, application);
  }
  const auto& reminder = presentation.reminders.front();
  Popup popup{
      .tag = tagFor("reminder", application.identifier, reminder.identifier()),
      .applicationName = application.displayName,
      .summary = titles == TitleDisclosure::said ? reminder.content().title() : std::string{generalTitle},
      .body = {},
      .actions = {action(reminder_action::open, "Open")},
  };
  if (owner == ReminderOwner::agent) {
    popup.actions.push_back(action(reminder_action::done, "Done"));
  }
  popup.actions.push_back(action(reminder_action::later, "Later"));
  return popup;
}

Popup questionPopup(const std::string& application, const std::string& displayName) {
  return {.tag = tagFor("question", application, {}),
          .applicationName = displayName,
          .summary = "Allow reminders?",
          .body = {},
          .actions = {action(reminder_action::allow, "Allow"), action(reminder_action::notNow, "Not now")}};
}

Popup notSavedPopup(const std::string& displayName) {
  return {.tag = tagFor("not-saved", {}, {}),
          .applicationName = displayName,
          .summary = "This could not be saved",
          .body = "The reminder stays. Try again later.",
          .actions = {}};
}

Popup testPopup(const std::string& displayName) {
  return {.tag = tagFor("test", {}, {}),
          .applicationName = displayName,
          .summary = std::string{generalTitle},
          .body = "This is a test. Reminders look like this.",
          .actions = {}};
}

} // namespace orvan
