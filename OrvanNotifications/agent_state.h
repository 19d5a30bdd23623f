#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// How the reminder service stands with the file that holds the reminders.
enum class AgentFile { open, locked, unusable };

/// What a reminder on the screen says: what the user noted down, or only that there is one.
enum class ReminderTitles { said, general };

/// How the reminder service is, as it says itself.
struct AgentState {
  std::string version;
  /// The store of its own whose reminders it keeps in line.
  std::filesystem::path store;
  AgentFile file = AgentFile::unusable;
  ReminderTitles titles = ReminderTitles::said;
  /// Whether it looks for new mail and calendar entries by itself.
  bool refreshing = false;
  /// The desktop's notification service; empty when there is none.
  std::string service;
  std::vector<std::string> serviceCapabilities;
  /// When the next reminder is due.
  std::optional<Instant> nextDue = std::nullopt;
  std::optional<Instant> lastRefresh = std::nullopt;
  /// Nothing when the service is older than this and does not say.
  std::optional<Instant> runningSince = std::nullopt;
};

} // namespace orvan
