#include "application/sources/source_recognizer.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "OrvanPlatform/error.h"
#include "application/import/recognition/source_recognition.h"
#include "application/sources/collection_files.h"
#include "application/sources/mail_folders.h"
#include "application/sources/source_fault.h"

namespace orvan {
namespace {

namespace fs = std::filesystem;

bool beginsCards(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::array<char, 16> head{};
  stream.read(head.data(), head.size());
  return std::string_view{head.data(), static_cast<std::size_t>(stream.gcount())}.contains("BEGIN:VCARD");
}

SourceKind kindOfFile(const fs::path& file) {
  if (hasEnding(file, ".vcf") || beginsCards(file)) {
    return SourceKind::cards;
  }
  if (hasEnding(file, ".ics")) {
    requireCalendar(file);
    return SourceKind::calendar;
  }
  try {
    requireMbox(file);
    return SourceKind::mail;
  } catch (const Error& error) {
    if (error.code() == WrongSource::isACalendar) {
      return SourceKind::calendar;
    }
    throw;
  }
}

/// What the files right in a folder make it.
std::optional<SourceKind> kindOfFilesIn(const fs::path& folder) {
  const auto holds = [&folder](std::string_view ending) {
    return !CollectionFiles::at(folder, Instant{}, ending).paths.empty();
  };
  if (holds(".ics")) {
    return SourceKind::calendar;
  }
  return holds(".vcf") ? std::optional{SourceKind::cards} : std::nullopt;
}

std::vector<RecognizedSource> collectionsIn(const fs::path& folder) {
  std::vector<RecognizedSource> found;
  std::error_code error;
  for (fs::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
    std::error_code unknown;
    if (!entry->is_directory(unknown)) {
      continue;
    }
    if (const auto kind = kindOfFilesIn(entry->path())) {
      found.push_back({*kind, fs::weakly_canonical(entry->path())});
    }
  }
  std::ranges::sort(found, {}, &RecognizedSource::path);
  return found;
}

} // namespace

std::vector<RecognizedSource> recognizeSources(const fs::path& path) {
  requireFileOrFolder(path, SourceFault::missing);
  const auto whole = fs::canonical(path);
  if (!fs::is_directory(whole)) {
    return {{kindOfFile(whole), whole}};
  }
  if (!findMailFolders(whole, MailboxTelling::byContent).mailboxes.empty()) {
    return {{SourceKind::mail, whole}};
  }
  if (const auto kind = kindOfFilesIn(whole)) {
    return {{*kind, whole}};
  }
  auto collections = collectionsIn(whole);
  if (collections.empty()) {
    throw Error(SourceFault::holdsNothing, "looking for sources in a folder");
  }
  return collections;
}

} // namespace orvan
