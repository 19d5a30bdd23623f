#pragma once

#include <cstdint>
#include <map>

#include "OrvanStore/database_queue.h"
#include "application/import/cards/card_source.h"
#include "application/import/ledger/mail_importer.h"

namespace orvan {

/// What the import of contact cards found: cards == imported + known + those skipped.
struct CardReport {
  std::int64_t cards = 0;
  /// They told something new.
  std::int64_t imported = 0;
  std::int64_t known = 0;
  /// How many people turned out to be part of another one.
  std::int64_t joined = 0;
  /// Addresses that cards of different names have: they join nothing, and are called as before.
  std::int64_t ambiguous = 0;
  /// People whom a card would make one, and whom the user took apart, or hides and shows.
  std::int64_t keptApart = 0;
  std::map<CardSkip, std::int64_t> skipped;
  /// The import was stopped before the end, and the rest was left for the next.
  bool isStopped = false;
};

/// Brings in what contact cards tell of people: their names, which are better than those in mail and never above the
/// user's word, and which addresses are one person's. Who becomes one becomes the person with the most mail. Addresses
/// that no mail has come from so far are kept for the mail that will. Importing the same again changes nothing.
class CardImporter {
 public:
  CardImporter(DatabaseQueue& store, ImportContext context);

  /// Reads `source` to its end. When it fails, what came before is kept, and the source's error is thrown. The same
  /// without an error when the context's watch asks for a stop.
  CardReport import(CardSource& source);

 private:
  DatabaseQueue& store_;
  ImportContext context_;
};

} // namespace orvan
