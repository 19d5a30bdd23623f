#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "application/import/cards/contact_card.h"
#include "application/import/content_lines/content_line_reader.h"

namespace orvan {

/// Why a card told nothing.
enum class CardSkip {
  /// It has no mail address.
  noAddress,
  /// It has one address, and no name to go with it.
  noName,
  /// It is a group's, or a company's or a place's.
  nobody,
  /// It is the user's own.
  own,
  /// It has no end.
  unreadable,
  /// A file among others that cannot be read, or holds no card.
  noCardFile,
};

/// A sentence fragment for the user, as in "3 skipped: no mail address".
const char* describe(CardSkip reason) noexcept;

/// A card, or why there is none.
using CardItem = std::variant<ContactCard, CardSkip>;

/// Reads the cards of one file, one after the other: vCard 2.1, 3.0 and 4.0, as programs write them rather than as the
/// texts have it. Pictures and other long properties cost no memory. One thread at a time.
class CardReader {
 public:
  /// Throws Error(CardSourceError::cannotRead).
  explicit CardReader(const std::filesystem::path& file);

  /// The next card, or nothing at the end. Throws Error(CardSourceError::cannotRead).
  std::optional<CardItem> next();

  /// How many bytes of the file next() is done with.
  std::uint64_t bytesRead() const noexcept { return bytesRead_; }

 private:
  std::optional<ContentLine> nextLine();
  CardItem readCard();

  ContentLineReader lines_;
  std::uint64_t bytesRead_ = 0;
};

} // namespace orvan
