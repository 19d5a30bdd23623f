#include "application/import/mail/maildir_source.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/import/mail/mail_file.h"
#include "application/import/mail/mail_source_error.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;

/// The names in `folder` in byte order; nothing when it cannot be listed.
std::optional<std::vector<std::string>> sortedNames(const fs::path& folder) {
  std::error_code error;
  std::vector<std::string> names;
  fs::directory_iterator entry{folder, error};
  for (; !error && entry != fs::directory_iterator{}; entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  if (error) {
    return std::nullopt;
  }
  std::ranges::sort(names);
  return names;
}

bool isFolder(const fs::path& path) {
  std::error_code error;
  return fs::is_directory(path, error);
}

void appendMailFolders(const fs::path& parent, std::vector<fs::path>& folders) {
  for (const char* name : {"cur", "new"}) {
    if (auto folder = parent / name; isFolder(folder)) {
      folders.push_back(std::move(folder));
    }
  }
}

/// The folders that hold mails: of the Maildir itself first, then of each folder inside it.
std::vector<fs::path> mailFolders(const fs::path& root) {
  const auto names = sortedNames(root);
  if (!names) {
    throw Error{MailSourceError::notPermitted, root.string()};
  }
  std::vector<fs::path> folders;
  appendMailFolders(root, folders);
  for (const auto& name : *names) {
    if (name != "cur" && name != "new" && name != "tmp") {
      appendMailFolders(root / name, folders);
    }
  }
  return folders;
}

MailSourceError errorAt(const fs::path& path) {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    return MailSourceError::notFound;
  }
  return fs::exists(status) ? MailSourceError::isAFile : MailSourceError::notPermitted;
}

std::uint64_t countFilesIn(const fs::path& folder) {
  std::error_code error;
  std::uint64_t count = 0;
  fs::directory_iterator entry{folder, error};
  for (; !error && entry != fs::directory_iterator{}; entry.increment(error)) {
    count += entry->path().filename().native().starts_with('.') ? 0 : 1;
  }
  return count;
}

} // namespace

MaildirSource::MaildirSource(const fs::path& path, std::set<std::string> ownAddresses)
    : parser_{BodyLines::asSent, std::move(ownAddresses)} {
  if (!isFolder(path)) {
    throw Error{errorAt(path), path.string()};
  }
  folders_ = mailFolders(path);
  if (folders_.empty()) {
    throw Error{MailSourceError::notAMaildir, path.string()};
  }
  for (const auto& folder : folders_) {
    filesTotal_ += countFilesIn(folder);
  }
}

std::optional<MailItem> MaildirSource::next() {
  while (nextName_ == names_.size()) {
    if (nextFolder_ == folders_.size()) {
      return std::nullopt;
    }
    if (!moveToNextFolder()) {
      return MailSkip{MailSkipReason::unreadable};
    }
  }
  ++filesRead_;
  return readMail(names_[nextName_++]);
}

/// Whether the next folder could be listed.
bool MaildirSource::moveToNextFolder() {
  folder_ = folders_[nextFolder_++];
  auto names = sortedNames(folder_);
  const bool listed = names.has_value();
  names_ = std::move(names).value_or(std::vector<std::string>{});
  std::erase_if(names_, [](const std::string& name) { return name.starts_with('.'); });
  nextName_ = 0;
  return listed;
}

MailItem MaildirSource::readMail(const std::string& name) {
  if (const auto skip = skipForFlags(name)) {
    return *skip;
  }
  return readMailFile(folder_ / name, parser_, mail_);
}

} // namespace orvan
