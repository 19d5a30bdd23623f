#pragma once

#include <string>
#include <string_view>

#include "application/agent/reminders/presenter.h"
#include "application/agent/reminders/reminder_file.h"

namespace orvan {

/// What the user can press.
namespace reminder_action {
inline constexpr std::string_view open = "default";
inline constexpr std::string_view done = "done";
inline constexpr std::string_view later = "later";
inline constexpr std::string_view allow = "allow";
inline constexpr std::string_view notNow = "not-now";
} // namespace reminder_action

/// Whose reminder it is: of the agent's own the user can say that they are done.
enum class ReminderOwner { agent, otherProgram };

/// The popups of the agent, in words. Their tags are hashes: nothing personal is in them.
Popup popupFor(const Presentation& presentation, const ReminderApplication& application, ReminderOwner owner,
               TitleDisclosure titles);
Popup questionPopup(const std::string& application, const std::string& displayName);
Popup notSavedPopup(const std::string& displayName);
Popup testPopup(const std::string& displayName);

} // namespace orvan
