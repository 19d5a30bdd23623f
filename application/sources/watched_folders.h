#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "application/sources/remembered_source.h"

namespace orvan {

/// A folder in which something changes when there is something new in a source.
struct WatchedFolder {
  std::filesystem::path path;
  /// The files in it that count; nothing when all of them do.
  std::optional<std::set<std::string>> names;
};

/// Those of all the sources, each once and in the order of their paths. A source that cannot be looked at now has none.
/// The folders of mail are found as they are now: what is added to them later is told by asking again.
std::vector<WatchedFolder> watchedFoldersOf(const std::vector<RememberedSource>& sources);

} // namespace orvan
