#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvan {

/// A folder, and the files in it that count; all of them when there are no names.
struct FolderToWatch {
  std::filesystem::path path;
  std::optional<std::set<std::string>> names;

  bool operator==(const FolderToWatch&) const = default;
};

enum class FolderNews {
  /// Something was written, came or went.
  changed,
  /// The system does not let this program watch so much; nothing is watched now.
  cannotWatch,
};

/// Tells of changes in folders. Used from the thread of one executor; destroying it ends the watching.
class FolderWatcher {
 public:
  using Tell = std::function<void(FolderNews)>;

  virtual ~FolderWatcher() = default;

  /// Watches these and no others from now on. `tell` is called on the executor, never inside this call, and often: many
  /// changes at once are told as one or as several. A folder that is not there, or goes, is passed over.
  virtual void watch(std::vector<FolderToWatch> folders, Tell tell) = 0;
};

} // namespace orvan
