#include "application/import/ledger/mail_importer.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <set>
#include <span>
#include <thread>
#include <utility>
#include <variant>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/precondition.h"
#include "application/import/ledger/handoff.h"
#include "application/import/ledger/history_rows.h"
#include "application/import/ledger/mail_batch.h"
#include "application/import/ledger/own_addresses.h"
#include "application/import/ledger/question_ledger.h"
#include "application/import/ledger/thread_ledger.h"

namespace orvan {
namespace {

/// Ends a batch of large mails early: two batches stay far below the memory that an import may take.
constexpr std::size_t mostBytesPerBatch = std::size_t{40} * 1024 * 1024;

struct ReadBatch {
  MailBatch batch;
  std::uint64_t bytesRead = 0;
  std::uint64_t bytesTotal = 0;
};

/// Reads the source on its own thread, a batch ahead of the writer.
class BatchReader {
 public:
  BatchReader(MailSource& source, std::set<std::string> ownAddresses, std::size_t mailsPerBatch)
      : source_(source),
        ownAddresses_(std::move(ownAddresses)),
        mailsPerBatch_(mailsPerBatch),
        thread_([this] { run(); }) {}

  ~BatchReader() { batches_.abandon(); }
  BatchReader(const BatchReader&) = delete;
  BatchReader& operator=(const BatchReader&) = delete;

  /// The next batch; nothing at the end. After the end, rethrow() tells whether the source failed.
  std::optional<ReadBatch> next() { return batches_.take(); }

  void rethrow() {
    thread_.join();
    if (failure_) {
      std::rethrow_exception(failure_);
    }
  }

 private:
  void run() {
    bool isMore = true;
    while (isMore) {
      ReadBatch read;
      isMore = fill(read);
      read.bytesRead = source_.bytesRead();
      read.bytesTotal = source_.bytesTotal();
      if (read.batch.size() > 0) {
        isMore = batches_.give(std::move(read)) && isMore;
      }
    }
    batches_.finish();
  }

  /// False when there is no more to read. What was read before the source failed is in the batch.
  bool fill(ReadBatch& read) {
    try {
      while (read.batch.size() < mailsPerBatch_ && read.batch.bytes() < mostBytesPerBatch) {
        auto item = source_.next();
        if (!item) {
          return false;
        }
        add(std::move(*item), read.batch);
      }
      return true;
    } catch (...) {
      failure_ = std::current_exception();
      return false;
    }
  }

  void add(MailItem item, MailBatch& batch) const {
    if (auto* message = std::get_if<MailMessage>(&item)) {
      batch.add(std::move(*message), ownAddresses_);
    } else {
      batch.addSkip(std::get<MailSkip>(item).reason);
    }
  }

  MailSource& source_;
  std::set<std::string> ownAddresses_;
  std::size_t mailsPerBatch_;
  Handoff<ReadBatch> batches_;
  /// Written by the thread, read after it ended.
  std::exception_ptr failure_;
  std::jthread thread_;
};

std::vector<MailKey> keysOf(const MailBatch& batch) {
  std::vector<MailKey> keys;
  for (const auto& mail : batch.mails()) {
    keys.push_back(mail.key);
    keys.insert(keys.end(), mail.references.begin(), mail.references.end());
  }
  std::ranges::sort(keys);
  const auto duplicates = std::ranges::unique(keys);
  keys.erase(duplicates.begin(), duplicates.end());
  return keys;
}

void countUse(PreparedMail::Use use, MailReport& report) {
  switch (use) {
    case PreparedMail::Use::history:
      ++report.imported;
      break;
    case PreparedMail::Use::listOnly:
    case PreparedMail::Use::automated:
      ++report.automated;
      break;
    case PreparedMail::Use::note:
      ++report.notes;
      break;
  }
}

/// A mail whose rows are to be written.
struct PlacedMail {
  PreparedMail* mail;
  /// As the thread ledger numbers it.
  std::size_t thread;
};

/// Counts each mail, gives it its place, and returns those to be written.
std::vector<PlacedMail> placeMails(MailBatch& batch, ThreadLedger& threads, MailReport& report) {
  std::vector<PlacedMail> placed;
  for (auto& mail : batch.mails()) {
    if (threads.isKnown(mail.key)) {
      ++report.known;
      continue;
    }
    countUse(mail.use, report);
    if (mail.use == PreparedMail::Use::automated || mail.use == PreparedMail::Use::note) {
      threads.passOver(mail.key);
    } else {
      // A thread is called by its first mail.
      placed.push_back({&mail, threads.placeMail(mail.key, mail.references, mail.interactionID())});
    }
  }
  for (const auto reason : batch.skips()) {
    ++report.skipped[reason];
  }
  report.read += static_cast<std::int64_t>(batch.size());
  return placed;
}

/// People on mails that were read before are there already, or the user has had them removed.
void keepPeopleOf(std::span<const PlacedMail> placed, PeopleLedger& people) {
  std::set<std::string_view> identityIDs;
  for (const auto& [mail, thread] : placed) {
    identityIDs.insert(mail->participantIdentityIDs.begin(), mail->participantIdentityIDs.end());
  }
  people.keepOnly(identityIDs);
}

InteractionRow rowOf(PreparedMail& mail, std::string threadID) {
  return {mail.interactionID(),
          std::move(threadID),
          mail.isFromUser ? std::nullopt : std::optional{std::move(mail.principalIdentityID)},
          mail.isFromUser ? "outbound" : "inbound",
          "message",
          mail.isGroup ? "group" : "direct",
          formatInternetDateTime(mail.sentAt),
          std::move(mail.participantIdentityIDs)};
}

void noteQuestionOf(const InteractionRow& row, const std::optional<std::string>& question, Connection& connection) {
  if (question && row.senderIdentityID) {
    noteQuestion({row.id, row.threadID, *row.senderIdentityID, row.occurredAt, *question}, connection);
  }
}

void writeBatch(MailBatch& batch, const SourceAccount& account, std::string_view now, MailReport& report,
                Connection& connection) {
  ThreadLedger threads;
  threads.load(keysOf(batch), connection);
  const auto placed = placeMails(batch, threads, report);
  threads.write(connection);
  keepPeopleOf(placed, batch.people());
  batch.people().write(connection, now);

  HistoryRows rows;
  rows.reserve(placed.size());
  for (const auto& [mail, thread] : placed) {
    auto row = rowOf(*mail, threads.threadID(thread));
    noteQuestionOf(row, mail->question, connection);
    rows.addThread(row.threadID, "mail", std::move(mail->subject));
    rows.add(std::move(row));
  }
  rows.write(account.id, now, connection);
}

void emptyLog(Connection& connection) {
  connection.execute("PRAGMA wal_checkpoint(PASSIVE)");
}

} // namespace

MailImporter::MailImporter(DatabaseQueue& store, ImportContext context, std::size_t mailsPerBatch)
    : store_(store), context_(std::move(context)), mailsPerBatch_(mailsPerBatch) {
  precondition(!context_.ownAddresses.empty(), "An import needs an address of the user's.");
  precondition(mailsPerBatch > 0, "A batch holds at least one mail.");
}

MailReport MailImporter::import(MailSource& source, const MailProgress& progress) {
  const auto now = formatInternetDateTime(context_.now);
  SourceAccount account;
  const auto ownAddresses = store_.write([&](Connection& connection) {
    account = mailAccountOf(context_.ownAddresses.front(), connection);
    recordImportStarted(account, now, connection);
    return rememberOwnAddresses(context_.ownAddresses, now, connection);
  });

  MailReport report;
  BatchReader reader(source, ownAddresses, mailsPerBatch_);
  while (auto read = reader.next()) {
    auto soFar = report;
    store_.write([&](Connection& connection) { writeBatch(read->batch, account, now, soFar, connection); });
    report = std::move(soFar);
    store_.withoutTransaction(emptyLog);
    if (progress) {
      progress(report, read->bytesRead, read->bytesTotal);
    }
  }
  store_.write([&](Connection& connection) { settleQuestions(now, connection); });
  reader.rethrow();
  store_.write([&](Connection& connection) { recordImportSucceeded(account, now, connection); });
  return report;
}

} // namespace orvan
