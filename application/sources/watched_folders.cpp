#include "application/sources/watched_folders.h"

#include <map>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/sources/mail_folders.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;

class FoundFolders {
 public:
  void wholeFolder(const fs::path& folder) { names_.insert_or_assign(folder, std::nullopt); }

  /// A program may write a file in its place, or put another one there: both show in its folder.
  void file(const fs::path& file) {
    auto& names = names_.try_emplace(file.parent_path(), std::set<std::string>{}).first->second;
    if (names) {
      names->insert(file.filename().native());
    }
  }

  void mail(const fs::path& path) {
    for (const auto& mailbox : findMailFolders(path, MailboxTelling::byName).mailboxes) {
      if (mailbox.form == Mailbox::Form::files) {
        wholeFolder(mailbox.path);
      } else {
        file(mailbox.path);
      }
    }
  }

  void collection(const fs::path& path) {
    std::error_code unreadable;
    if (fs::is_directory(path, unreadable)) {
      wholeFolder(path);
    } else {
      file(path);
    }
  }

  std::vector<WatchedFolder> all() && {
    std::vector<WatchedFolder> folders;
    folders.reserve(names_.size());
    for (auto& [path, names] : names_) {
      folders.push_back({path, std::move(names)});
    }
    return folders;
  }

 private:
  std::map<fs::path, std::optional<std::set<std::string>>> names_;
};

} // namespace

std::vector<WatchedFolder> watchedFoldersOf(const std::vector<RememberedSource>& sources) {
  FoundFolders found;
  for (const auto& source : sources) {
    try {
      if (source.kind == SourceKind::mail) {
        found.mail(source.path);
      } else {
        found.collection(source.path);
      }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): a refresh tells what is wrong with it.
    }
  }
  return std::move(found).all();
}

} // namespace orvan
