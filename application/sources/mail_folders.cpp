#include "application/sources/mail_folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/sources/source_fault.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostEntries = 200'000;
constexpr int mostDepth = 40;

std::string lowerCase(std::string_view text) {
  std::string lowered{text};
  std::ranges::transform(lowered, lowered.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lowered;
}

/// "trash" for ".Work.Trash", "Trash.sbd" and ".trash.directory", as programs name what lies in a folder and beside it.
std::string bareName(std::string_view name) {
  for (const std::string_view ending : {".sbd", ".directory"}) {
    if (name.ends_with(ending)) {
      name.remove_suffix(ending.size());
    }
  }
  if (name.starts_with('.')) {
    name.remove_prefix(name.rfind('.') + 1);
  }
  return lowerCase(name);
}

bool holdsNoHistory(std::string_view name) {
  constexpr std::array names{"trash",
                             "junk",
                             "spam",
                             "drafts",
                             "templates",
                             "outbox",
                             "bin",
                             "bulk mail",
                             "junk e-mail",
                             "unsent messages",
                             "junk email",
                             "deleted items",
                             "deleted messages"};
  const auto bare = bareName(name);
  return std::ranges::find(names, bare) != names.end();
}

/// What lies beside mail. An mbox file mostly has no ending, but its name may hold a dot.
bool mayBeMbox(const fs::path& path) {
  constexpr std::array endings{".msf",  ".dat",   ".html",  ".htm",    ".json", ".sqlite", ".db",    ".log",
                               ".ics",  ".vcf",   ".index", ".ids",    ".xml",  ".ini",    ".js",    ".cmeta",
                               ".lock", ".cache", ".data",  ".sorted", ".eml",  ".wdseml", ".mozlz4"};
  const auto name = lowerCase(path.filename().native());
  const bool isOther = std::ranges::any_of(endings, [&](const char* ending) { return name.ends_with(ending); });
  return !isOther && !name.starts_with('.') && name != "nstmp" && !name.contains(".ev-summary") &&
         !name.contains(".ibex.") && !name.contains(".sqlite-");
}

/// A file that others hold for writing, as Thunderbird does while it runs.
bool isLocked(const fs::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    return false;
  }
  struct flock lock = {};
  lock.l_type = F_RDLCK;
  lock.l_whence = SEEK_SET;
  const bool isHeld = fcntl(descriptor, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
  close(descriptor);
  return isHeld;
}

enum class Beginning { ofMail, ofSomethingElse, unreadable };

Beginning beginningOf(const fs::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) {
    return Beginning::unreadable;
  }
  std::array<char, 5> head{};
  const auto count = read(descriptor, head.data(), head.size());
  close(descriptor);
  return std::string_view{head.data(), count < 0 ? 0U : static_cast<std::size_t>(count)} == "From "
             ? Beginning::ofMail
             : Beginning::ofSomethingElse;
}

bool isFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

class Walk {
 public:
  explicit Walk(MailboxTelling telling) : telling_(telling) {}

  void folder(const fs::path& folder, const std::string& name, int depth = 0) {
    if (depth > mostDepth || !isNew(folder)) {
      return;
    }
    const auto entries = list(folder);
    if (!entries) {
      found_.unreadable.push_back(name);
      return;
    }
    const bool isProfile = std::ranges::find(*entries, "prefs.js") != entries->end();
    found_.isInUse |= isProfile && isLocked(folder / ".parentlock");
    const bool isMaildir = isFolder(folder / "cur") || (isFolder(folder / "new") && isFolder(folder / "tmp"));
    for (const auto& entry : *entries) {
      if (!isProfile || entry == "Mail" || entry == "ImapMail") {
        look(folder / entry, (fs::path{name} / entry).native(), isMaildir, depth);
      }
    }
  }

  MailFolders found() && { return std::move(found_); }

 private:
  void look(const fs::path& path, const std::string& name, bool isInMaildir, int depth) {
    const auto own = path.filename().native();
    std::error_code error;
    const auto status = fs::status(path, error);
    if (fs::is_directory(status)) {
      lookIntoFolder(path, name, own, isInMaildir, depth);
    } else if (fs::is_regular_file(status) && !isInMaildir && mayBeMbox(path)) {
      lookAtFile(path, name, own);
    }
  }

  void lookIntoFolder(const fs::path& path, const std::string& name, const std::string& own, bool isInMaildir,
                      int depth) {
    if (isInMaildir && (own == "cur" || own == "new")) {
      if (isNew(path)) {
        found_.mailboxes.push_back({Mailbox::Form::files, path, name});
      }
    } else if (holdsNoHistory(own)) {
      found_.leftOut.push_back(name);
    } else if (!isInMaildir || own != "tmp") {
      folder(path, name, depth + 1);
    }
  }

  void lookAtFile(const fs::path& path, const std::string& name, const std::string& own) {
    const auto beginning = telling_ == MailboxTelling::byName ? Beginning::ofMail : beginningOf(path);
    if (beginning == Beginning::unreadable) {
      found_.unreadable.push_back(name);
    } else if (beginning == Beginning::ofMail && holdsNoHistory(own)) {
      found_.leftOut.push_back(name);
    } else if (beginning == Beginning::ofMail && isNew(path)) {
      found_.mailboxes.push_back({Mailbox::Form::mbox, path, name});
    }
  }

  bool isNew(const fs::path& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && seen_.emplace(status.st_dev, status.st_ino).second;
  }

  /// In the order of their names, so that every walk takes the same way; nothing when the folder cannot be listed.
  std::optional<std::vector<std::string>> list(const fs::path& folder) {
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
      names.push_back(entry->path().filename().native());
      if (++entries_ > mostEntries) {
        throw Error(SourceFault::tooLarge, "looking for mail in a folder");
      }
    }
    if (error) {
      return std::nullopt;
    }
    std::ranges::sort(names);
    return names;
  }

  MailboxTelling telling_;
  MailFolders found_;
  std::set<std::pair<dev_t, ino_t>> seen_;
  std::size_t entries_ = 0;
};

std::uintmax_t sizeOfFilesIn(const fs::path& folder) {
  std::uintmax_t size = 0;
  std::error_code error;
  for (fs::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
    std::error_code unknown;
    const auto one = entry->file_size(unknown);
    size += unknown ? 0 : one;
  }
  return size;
}

} // namespace

void requireFileOrFolder(const fs::path& path, SourceFault absent) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    const bool isForbidden = errno == EACCES || errno == EPERM;
    throw Error(isForbidden ? SourceFault::notPermitted : absent, "looking at a source");
  }
  if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
    throw Error(SourceFault::notAFile, "looking at a source");
  }
  // As the user that the process runs for; a folder is searched as well as listed.
  if (access(path.c_str(), S_ISDIR(status.st_mode) ? R_OK | X_OK : R_OK) != 0) {
    throw Error(SourceFault::notPermitted, "looking at a source");
  }
}

MailFolders findMailFolders(const fs::path& path, MailboxTelling telling) {
  requireFileOrFolder(path, SourceFault::gone);
  if (!isFolder(path)) {
    return {{{Mailbox::Form::mbox, path, ""}}, {}, {}, false};
  }
  Walk walk(telling);
  walk.folder(path, "");
  return std::move(walk).found();
}

std::uintmax_t sizeOf(const std::vector<Mailbox>& mailboxes) {
  std::uintmax_t size = 0;
  for (const auto& mailbox : mailboxes) {
    std::error_code unknown;
    const auto one =
        mailbox.form == Mailbox::Form::files ? sizeOfFilesIn(mailbox.path) : fs::file_size(mailbox.path, unknown);
    size += unknown ? 0 : one;
  }
  return size;
}

} // namespace orvan
