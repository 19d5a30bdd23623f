#include "application/import/cards/card_source.h"

#include <algorithm>
#include <string>
#include <utility>

#include "OrvanPlatform/error.h"
#include "application/import/mail/decoded_text.h"

namespace orvan {
namespace {

class CardSourceCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.card_source"; }

  std::string message(int value) const override {
    switch (static_cast<CardSourceError>(value)) {
      case CardSourceError::cannotRead:
        return "The contact cards cannot be read; check that they are there and that you may read them.";
      case CardSourceError::holdsNoCard:
        return "The file holds no contact card; name one in vCard form (.vcf).";
      case CardSourceError::folderHoldsNoCards:
        return "There is no .vcf file in that folder; name the one that your address book keeps its cards in.";
    }
    return "The contact cards cannot be read.";
  }
};

bool isCardFile(const std::filesystem::directory_entry& entry) {
  return entry.symlink_status().type() == std::filesystem::file_type::regular &&
         lowerCasedAscii(entry.path().extension().native()) == ".vcf";
}

std::vector<std::filesystem::path> cardFilesIn(const std::filesystem::path& folder) try {
  std::vector<std::filesystem::path> files;
  const auto options = std::filesystem::directory_options::skip_permission_denied;
  for (auto entry = std::filesystem::recursive_directory_iterator(folder, options);
       entry != std::filesystem::recursive_directory_iterator(); ++entry) {
    const bool isHidden = entry->path().filename().native().starts_with('.');
    if (isHidden && entry->is_directory()) {
      entry.disable_recursion_pending();
    } else if (!isHidden && isCardFile(*entry)) {
      files.push_back(entry->path());
    }
  }
  std::ranges::sort(files);
  return files;
} catch (const std::filesystem::filesystem_error&) {
  throw Error(CardSourceError::cannotRead, "listing a folder of contact cards");
}

bool isFolder(const std::filesystem::path& path) {
  std::error_code unreachable;
  return std::filesystem::is_directory(path, unreachable);
}

std::uint64_t sizeOf(const std::filesystem::path& file) {
  std::error_code unreachable;
  const auto size = std::filesystem::file_size(file, unreachable);
  return unreachable ? 0 : size;
}

} // namespace

std::error_code make_error_code(CardSourceError error) noexcept {
  static const CardSourceCategory category;
  return {static_cast<int>(error), category};
}

CardSource::CardSource(const std::filesystem::path& fileOrFolder)
    : CardSource(isFolder(fileOrFolder) ? cardFilesIn(fileOrFolder) : std::vector{fileOrFolder}) {
  isFolder_ = isFolder(fileOrFolder);
}

CardSource::CardSource(std::vector<std::filesystem::path> files) : files_(std::move(files)) {
  if (files_.empty()) {
    throw Error(CardSourceError::folderHoldsNoCards, "looking for contact cards");
  }
  for (const auto& file : files_) {
    total_ += sizeOf(file);
  }
}

std::optional<CardItem> CardSource::next() {
  while (reader_ || nextFile_ < files_.size()) {
    try {
      if (auto item = nextOfFile()) {
        return item;
      }
    } catch (const Error&) {
      if (!isOneOfMany()) {
        throw;
      }
      foundCard_ = false;
    }
    reader_.reset();
    readBefore_ += sizeOf(files_[nextFile_++]);
    if (!foundCard_) {
      if (!isOneOfMany()) {
        throw Error(CardSourceError::holdsNoCard, "reading contact cards");
      }
      return CardSkip::noCardFile;
    }
  }
  return std::nullopt;
}

std::optional<CardItem> CardSource::nextOfFile() {
  if (!reader_) {
    foundCard_ = false;
    reader_.emplace(files_[nextFile_]);
  }
  auto item = reader_->next();
  foundCard_ |= item.has_value();
  return item;
}

std::uint64_t CardSource::amountRead() const noexcept {
  return readBefore_ + (reader_ ? reader_->bytesRead() : 0);
}

} // namespace orvan
