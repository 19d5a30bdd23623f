#include "application/sources/collection_files.h"

#include <algorithm>
#include <system_error>

#include "OrvanPlatform/error.h"
#include "application/import/ledger/stable_id.h"
#include "application/sources/source_fault.h"
#include "application/sources/source_position.h"

namespace orvan {
namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder, std::string_view ending) {
  std::error_code error;
  std::vector<std::filesystem::path> files;
  for (std::filesystem::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
    std::error_code unknown;
    if (hasEnding(entry->path(), ending) && !entry->path().filename().native().starts_with('.') &&
        entry->is_regular_file(unknown)) {
      files.push_back(entry->path());
    }
  }
  if (error) {
    throw Error(SourceFault::notPermitted, "listing a folder");
  }
  std::ranges::sort(files);
  return files;
}

} // namespace

bool hasEnding(const std::filesystem::path& file, std::string_view ending) {
  return std::ranges::equal(file.extension().native(), ending, {},
                            [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
}

CollectionFiles CollectionFiles::at(const std::filesystem::path& path, Instant systemNow, std::string_view ending) {
  std::error_code unreachable;
  const bool isFolder = std::filesystem::is_directory(path, unreachable);
  CollectionFiles files{isFolder ? filesIn(path, ending) : std::vector{path}, {}};
  const std::int64_t now = systemNow.time_since_epoch() / std::chrono::nanoseconds{1};
  std::string text;
  for (const auto& file : files.paths) {
    const auto status = FileStatus::of(file);
    if (isRecent(status.modifiedAt, now)) {
      return files;
    }
    text += file.filename().native() + "\n" + std::to_string(status.size) + " " + std::to_string(status.inode) + " " +
            std::to_string(status.modifiedAt) + "\n";
  }
  constexpr std::size_t digestLength = 24;
  files.digest = stableID(text, digestLength);
  return files;
}

} // namespace orvan
