#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/database_queue.h"
#include "application/import/ledger/batch_size.h"
#include "application/import/ledger/import_watch.h"
#include "application/import/ledger/source_progress.h"
#include "application/import/mail/mail_source.h"

namespace orvan {

/// What an import found. Everything read is counted once:
/// read == imported + completed + known + automated + elsewhere + notes + forgotten + skipped.
struct MailReport {
  std::int64_t read = 0;
  std::int64_t imported = 0;
  /// Read before, from this file or another.
  std::int64_t known = 0;
  /// Known from a copy that told less, such as a mailing list's.
  std::int64_t completed = 0;
  /// Written by a machine, or a newsletter; remembered, and kept out of everybody's history.
  std::int64_t automated = 0;
  /// Names none of the user's addresses, and does not answer the user: what a list brings, or mail to an address that
  /// was not told.
  std::int64_t elsewhere = 0;
  /// Mails that the user wrote to nobody else.
  std::int64_t notes = 0;
  /// From people whom the user has had forgotten, or from the user to nobody else.
  std::int64_t forgotten = 0;
  std::map<MailSkipReason, std::int64_t> skipped;
  /// The import was stopped before the end of the source, and the rest was left for the next.
  bool isStopped = false;
};

/// Told after every batch; may be empty.
using BatchWritten = std::function<void(const MailReport& soFar)>;

/// What is to be kept along with a batch, in the same transaction and after its mails.
using KeptAlong = std::function<void(Connection&)>;
/// Asked after the last mail of every batch was read, on the thread that reads; may be empty, and so may its answer.
/// For whoever remembers how far a source was read.
using AskWhatToKeep = std::function<KeptAlong()>;

/// Who the user is and when the import takes place.
struct ImportContext {
  /// The user's addresses as normalAddress() has them; at least one, which the caller sees to. Those that earlier
  /// imports were told are added to them.
  std::vector<std::string> ownAddresses;
  Instant now;
  /// May be null; must outlive the import.
  ImportWatch* watch = nullptr;
  /// The account that the source belongs to. Without one, it is the account of all mail, or all calendars, that were
  /// imported once.
  std::optional<SourceAccount> account = std::nullopt;
  ImportPace pace = ImportPace::swift;
};

/// Brings mail into the canonical tables. Each batch is one write transaction: an import that is cut short leaves whole
/// batches and can be run again. After each batch the write-ahead log is moved into the store file as far as readers
/// allow, so that it stays no larger than one batch makes it. Between two batches the store is left to others for a
/// moment.
///
/// Memory holds two batches, one being read and one being written, and the connection's page cache.
class MailImporter {
 public:
  /// Large enough that a batch, written in the order of the keys, visits the pages of a large store few times.
  static constexpr std::size_t usualMailsPerBatch = std::size_t{48} * 1024;

  /// `store` must outlive the importer. A batch ends early when its mails are large, the source is slow, or writing
  /// takes long.
  MailImporter(DatabaseQueue& store, ImportContext context, std::size_t mailsPerBatch = usualMailsPerBatch);

  /// Reads `source` to its end, or until the context's watch asks for a stop: then what was read so far is written as a
  /// last, shorter batch. Parsing runs on a thread of its own beside the writing. When the source fails part of the
  /// way, what came before is kept and the source's error is thrown; a fault of the store is thrown as StoreError.
  MailReport import(MailSource& source, const BatchWritten& batchWritten = {}, const AskWhatToKeep& askWhatToKeep = {});

 private:
  DatabaseQueue& store_;
  ImportContext context_;
  std::size_t mailsPerBatch_;
};

} // namespace orvan
