#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orvan {

/// What the desktop calls the program whose reminders these are.
inline constexpr std::string_view notificationDisplayName = "Orvan";

/// Whose the reminders of the store at `file` are in the notification service: an id for each store, so that two stores
/// of one user never withdraw each other's. The same file has the same id whatever it is called, links followed; the
/// file need not be there. Tells nothing of where it lies.
std::string notificationApplicationOf(const std::filesystem::path& file);

} // namespace orvan
