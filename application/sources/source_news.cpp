#include "application/sources/source_news.h"

#include <algorithm>
#include <chrono>

#include "OrvanPlatform/error.h"
#include "application/sources/collection_files.h"
#include "application/sources/mail_folders.h"
#include "application/sources/source_position.h"

namespace orvan {
namespace {

bool isChangedSince(const std::filesystem::path& path, Instant read) {
  return Instant{std::chrono::floor<std::chrono::microseconds>(
             std::chrono::nanoseconds{FileStatus::of(path).modifiedAt})} > read;
}

bool hasNewMail(const RememberedSource& source) {
  const auto folders = findMailFolders(source.path, MailboxTelling::byName);
  return std::ranges::any_of(
      folders.mailboxes, [&](const Mailbox& mailbox) { return isChangedSince(mailbox.path, *source.lastSucceededAt); });
}

/// A file that went shows in its folder alone.
bool hasNewFiles(const RememberedSource& source, std::string_view ending) {
  const auto files = CollectionFiles::at(source.path, *source.lastSucceededAt, ending);
  return isChangedSince(source.path, *source.lastSucceededAt) ||
         std::ranges::any_of(files.paths,
                             [&](const auto& path) { return isChangedSince(path, *source.lastSucceededAt); });
}

} // namespace

bool hasNews(const RememberedSource& source) {
  if (!source.lastSucceededAt) {
    return true;
  }
  try {
    switch (source.kind) {
      case SourceKind::mail:
        return hasNewMail(source);
      case SourceKind::calendar:
        return hasNewFiles(source, ".ics");
      case SourceKind::cards:
        return hasNewFiles(source, ".vcf");
    }
  } catch (const Error&) { // NOLINT(bugprone-empty-catch): what is wrong is told when it is read.
  }
  return false;
}

} // namespace orvan
