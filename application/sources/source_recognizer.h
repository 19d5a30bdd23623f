#pragma once

#include <filesystem>
#include <vector>

#include "application/sources/remembered_source.h"

namespace orvan {

struct RecognizedSource {
  SourceKind kind;
  std::filesystem::path path;
};

/// What can be remembered at `path`: an mbox file, a Maildir or a folder tree with such; an iCalendar file or a folder
/// of these; a file or a folder of contact cards. A folder that holds only folders of calendars or cards, as programs
/// keep them that synchronise several, is each of these.
///
/// Looks at how files begin. The paths are absolute and without links. Throws Error with a SourceFault, or with a
/// WrongSource for a file that is something else.
std::vector<RecognizedSource> recognizeSources(const std::filesystem::path& path);

} // namespace orvan
