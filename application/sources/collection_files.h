#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// The files that make up one calendar, or one collection of contact cards: a file, or all files with its ending that
/// lie right in a folder, as programs keep them that synchronise with a server.
struct CollectionFiles {
  /// In the order of their names.
  std::vector<std::filesystem::path> paths;
  /// Stands for the files as they are now: others, or others of the same name, have another one. Empty when one of them
  /// is so new that it can still change without a trace.
  std::string digest;

  /// `systemNow` is the moment by which the file system dates what it keeps. Throws Error with a SourceFault when a
  /// folder cannot be listed.
  static CollectionFiles at(const std::filesystem::path& path, Instant systemNow, std::string_view ending = ".ics");
};

/// Whether the name of a file ends so, in any case of its letters.
bool hasEnding(const std::filesystem::path& file, std::string_view ending);

} // namespace orvan
