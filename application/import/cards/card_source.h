#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "application/import/cards/card_reader.h"

namespace orvan {

/// Why contact cards cannot be read at all.
enum class CardSourceError {
  cannotRead = 1,
  /// The file holds no card.
  holdsNoCard,
  /// There is no .vcf file in the folder, nor below it.
  folderHoldsNoCards,
};

std::error_code make_error_code(CardSourceError error) noexcept;

/// The cards of a file, or of every .vcf file in a folder and below it, in the order of their names. What programs hide
/// (a name that begins with a point) is left out, and links are not followed. One thread at a time.
class CardSource {
 public:
  /// Throws Error with a CardSourceError.
  explicit CardSource(const std::filesystem::path& fileOrFolder);
  /// The cards of these files; one of several that fails is skipped. There must be at least one.
  explicit CardSource(std::vector<std::filesystem::path> files);

  /// The next card, or why there is none; nothing at the end. In a folder a file that fails is one that is skipped.
  /// Throws Error with a CardSourceError when the only file fails or holds no card.
  std::optional<CardItem> next();

  /// In bytes.
  std::uint64_t amountRead() const noexcept;
  std::uint64_t amountTotal() const noexcept { return total_; }

 private:
  std::optional<CardItem> nextOfFile();

  bool isOneOfMany() const noexcept { return isFolder_ || files_.size() > 1; }

  bool isFolder_ = false;
  std::vector<std::filesystem::path> files_;
  std::size_t nextFile_ = 0;
  std::optional<CardReader> reader_;
  bool foundCard_ = false;
  std::uint64_t readBefore_ = 0;
  std::uint64_t total_ = 0;
};

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::CardSourceError> : std::true_type {};
