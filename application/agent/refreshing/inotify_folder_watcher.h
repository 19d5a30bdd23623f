#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "OrvanPlatform/executor.h"
#include "application/agent/refreshing/folder_watcher.h"

namespace orvan {

/// Has the kernel tell what changes. Folders that other machines share may change without its knowing.
class InotifyFolderWatcher final : public FolderWatcher {
 public:
  /// A user's programs have a common number of watches; ours is to leave some for the others.
  static constexpr std::size_t usualMost = 8192;

  explicit InotifyFolderWatcher(Executor executor, std::size_t mostFolders = usualMost);
  ~InotifyFolderWatcher() override;
  InotifyFolderWatcher(const InotifyFolderWatcher&) = delete;
  InotifyFolderWatcher& operator=(const InotifyFolderWatcher&) = delete;

  void watch(std::vector<FolderToWatch> folders, Tell tell) override;

 private:
  class Watch;

  Executor executor_;
  std::size_t mostFolders_;
  std::shared_ptr<Watch> watch_;
};

} // namespace orvan
