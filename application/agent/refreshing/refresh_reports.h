#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "application/agent/refreshing/folder_watcher.h"

namespace orvan {

struct SourcesReport {
  /// Of a source that cannot be looked at now there is no folder.
  std::int64_t countRemembered;
  std::vector<FolderToWatch> folders;
};

/// What 'orvan sources folders --json' tells; nothing when that is no such report.
std::optional<SourcesReport> sourcesToldIn(std::string_view report);

enum class RefreshNews {
  /// It is no report of a refresh: the store could not be opened, or there was no time to the end.
  unknown,
  none,
  /// There is something new in the store.
  some,
};

/// What 'orvan refresh --json' tells, of sources that could not be read as well.
RefreshNews newsToldIn(std::string_view report);

} // namespace orvan
