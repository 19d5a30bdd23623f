#pragma once

#include <filesystem>

namespace orvan::internal {

/// A file that is to appear under its name whole or not at all: it is made under another name beside that, readable by
/// its owner alone, and gets its own when it is finished. Whoever makes files in the same folder this way waits for it.
///
/// The other name is the same each time, so that what a killed program left is found and removed by the next one.
///
/// Failures are Errors with the system's reason.
class NewFile {
 public:
  /// Makes the file, empty. Fails with file_exists when something has its name.
  explicit NewFile(std::filesystem::path finalPath);
  /// Removes the file unless it has appeared.
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Where it is until then.
  const std::filesystem::path& path() const noexcept { return path_; }

  /// Gives the file its name, on disk, and never in place of another: fails with file_exists then. Nothing may have it
  /// open as a store. What is left beside that name of a store that is gone is removed: it would be taken for this
  /// one's log.
  void appear();

 private:
  /// The lock that the makers of files in a folder take turns with.
  class FolderLock {
   public:
    explicit FolderLock(const std::filesystem::path& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    /// A new name in the folder survives a power cut from then on.
    void sync() const;

   private:
    int descriptor_;
  };

  std::filesystem::path finalPath_;
  std::filesystem::path path_;
  FolderLock folder_;
};

} // namespace orvan::internal
