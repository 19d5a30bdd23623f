#include "application/import/ledger/mail_importer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <optional>
#include <set>
#include <span>
#include <thread>
#include <unordered_map>
#include <utility>
#include <variant>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/precondition.h"
#include "application/import/ledger/address_use_ledger.h"
#include "application/import/ledger/batch_size.h"
#include "application/import/ledger/contact_ledger.h"
#include "application/import/ledger/forgotten_people.h"
#include "application/import/ledger/handoff.h"
#include "application/import/ledger/history_rows.h"
#include "application/import/ledger/mail_batch.h"
#include "application/import/ledger/own_addresses.h"
#include "application/import/ledger/question_ledger.h"
#include "application/import/ledger/stored_interactions.h"
#include "application/import/ledger/thread_ledger.h"
#include "application/import/ledger/waiting_threads.h"

namespace orvan {
namespace {

/// Ends a batch of large mails early: two batches stay far below the memory that an import may take.
constexpr std::size_t mostBytesPerBatch = std::size_t{40} * 1024 * 1024;
/// Ends a batch from a slow disk or a far folder early: no more than that is lost when the program is killed.
constexpr std::chrono::seconds longestReading{10};
/// Between two batches. Whoever waits for the store looks again within three milliseconds, but may be kept from the
/// processor for longer.
constexpr std::chrono::milliseconds turnOfOthers{25};

/// Mails that were read, and what is to be kept along with them.
struct ReadBatch {
  MailBatch mails;
  KeptAlong keptAlong;
};

/// Reads the source on its own thread, a batch ahead of the writer.
class BatchReader {
 public:
  BatchReader(MailSource& source, KnownAddresses known, const BatchSize& mailsPerBatch, ImportWatch& watch,
              const AskWhatToKeep& askWhatToKeep)
      : source_(source),
        known_(std::move(known)),
        mailsPerBatch_(mailsPerBatch),
        watch_(watch),
        askWhatToKeep_(askWhatToKeep),
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

  /// Whether there is more to read; once rethrow() was called.
  bool isStopped() const noexcept { return isStopped_; }

 private:
  void run() {
    bool isMore = true;
    while (isMore) {
      ReadBatch batch;
      isMore = fill(batch.mails);
      if (askWhatToKeep_) {
        batch.keptAlong = askWhatToKeep_();
      }
      if (batch.mails.size() > 0 || batch.keptAlong) {
        isMore = batches_.give(std::move(batch)) && isMore;
      }
    }
    batches_.finish();
  }

  /// False when there is no more to read. What was read before the source failed is in the batch.
  bool fill(MailBatch& batch) {
    const auto end = std::chrono::steady_clock::now() + longestReading;
    try {
      while (batch.size() < mailsPerBatch_.get() && batch.bytes() < mostBytesPerBatch &&
             std::chrono::steady_clock::now() < end) {
        if (watch_.isStopRequested()) {
          isStopped_ = true;
          return false;
        }
        auto item = source_.next();
        if (!item) {
          return false;
        }
        add(std::move(*item), batch);
        watch_.tellRead(++itemsRead_, {source_.amountRead(), source_.amountTotal()});
      }
      return true;
    } catch (...) {
      failure_ = std::current_exception();
      return false;
    }
  }

  void add(MailItem item, MailBatch& batch) {
    if (auto* message = std::get_if<MailMessage>(&item)) {
      batch.add(std::move(*message), known_);
    } else {
      batch.addSkip(std::get<MailSkip>(item).reason);
    }
  }

  MailSource& source_;
  KnownAddresses known_;
  const BatchSize& mailsPerBatch_;
  ImportWatch& watch_;
  const AskWhatToKeep& askWhatToKeep_;
  std::int64_t itemsRead_ = 0;
  Handoff<ReadBatch> batches_;
  // Written by the thread, read after it ended.
  std::exception_ptr failure_;
  bool isStopped_ = false;
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
    case PreparedMail::Use::automated:
      ++report.automated;
      break;
    case PreparedMail::Use::elsewhere:
      ++report.elsewhere;
      break;
    case PreparedMail::Use::note:
      ++report.notes;
      break;
    case PreparedMail::Use::forgotten:
      ++report.forgotten;
      break;
  }
}

/// A mail whose rows are to be written.
struct PlacedMail {
  PreparedMail* mail;
  /// As the thread ledger numbers it.
  std::size_t thread;
  /// Rows of a copy that told less are in the store.
  bool isStored;
};

/// A mail that is not kept any more.
struct DroppedMail {
  MailKey key;
  std::size_t thread;
};

/// Goes through a batch and finds what is to be written.
class Placement {
 public:
  Placement(ThreadLedger& threads, AddressUseLedger& uses, const ForgottenPeople& forgotten, MailReport& report)
      : threads_(threads), uses_(uses), forgotten_(forgotten), report_(report) {}

  void place(PreparedMail& mail) {
    forgotten_.leaveOut(mail);
    decideAsAnswer(mail);
    const auto known = threads_.standingOf(mail.key);
    if (known != MailStanding::referenced && mail.standing <= known && !isOutdated(known)) {
      ++report_.known;
      if (mail.isReadAgain && mail.standing == known && known > MailStanding::passedOver) {
        keep(mail, true);
      }
      return;
    }
    count(mail, known);
    if (mail.standing == MailStanding::passedOver && isOutdated(known)) {
      drop(mail.key);
    }
    if (mail.standing > MailStanding::passedOver) {
      keep(mail, known > MailStanding::passedOver);
    } else if (mail.use == PreparedMail::Use::elsewhere) {
      threads_.placeMail(mail.key, mail.references, mail.interactionID(), mail.standing);
    } else {
      threads_.passOver(mail.key);
    }
  }

  /// Those to be written, each mail once.
  std::vector<PlacedMail> placed() && { return std::move(placed_); }
  const std::vector<DroppedMail>& dropped() const noexcept { return dropped_; }

 private:
  void count(const PreparedMail& mail, MailStanding known) {
    if (isOutdated(known)) {
      ++report_.known;
    } else if (known != MailStanding::referenced) {
      ++report_.completed;
    } else {
      countUse(mail.use, report_);
      if (!mail.isFromUser() && mail.use != PreparedMail::Use::forgotten) {
        uses_.add(mail);
      }
    }
  }

  void drop(MailKey key) {
    if (const auto thread = threads_.threadOf(key)) {
      dropped_.push_back({key, *thread});
    }
  }

  /// What does not name the user is contact all the same when it answers the user.
  void decideAsAnswer(PreparedMail& mail) const {
    if (mail.standingAsAnswer <= mail.standing || mail.references.empty()) {
      return;
    }
    const auto answered = threads_.standingOf(mail.references.back());
    if (answered == MailStanding::own || answered == MailStanding::outdatedOwn) {
      mail.standing = mail.standingAsAnswer;
      mail.use = PreparedMail::Use::history;
    }
  }

  void keep(PreparedMail& mail, bool wasKept) {
    // A thread is called by its first mail.
    const auto thread = threads_.placeMail(mail.key, mail.references, mail.interactionID(), mail.standing);
    const auto [position, isNew] = positions_.try_emplace(mail.key, placed_.size());
    if (isNew) {
      placed_.push_back({&mail, thread, wasKept});
    } else {
      placed_[position->second].mail = &mail;
    }
  }

  ThreadLedger& threads_;
  AddressUseLedger& uses_;
  const ForgottenPeople& forgotten_;
  MailReport& report_;
  std::vector<PlacedMail> placed_;
  std::vector<DroppedMail> dropped_;
  std::unordered_map<MailKey, std::size_t> positions_;
};

/// People on mails that were read before are there already, or the user has had them removed.
void keepPeopleOf(std::span<const PlacedMail> placed, PeopleLedger& people) {
  std::set<std::string_view> identityIDs;
  for (const auto& one : placed) {
    identityIDs.insert(one.mail->participantIdentityIDs.begin(), one.mail->participantIdentityIDs.end());
  }
  people.keepOnly(identityIDs);
}

InteractionRow rowOf(PreparedMail& mail, std::string threadID) {
  const bool isFromUser = mail.isFromUser();
  const bool isInCompany = isFromUser ? mail.readers != 1 : mail.standing != MailStanding::direct;
  return {mail.interactionID(),
          std::move(threadID),
          isFromUser ? std::nullopt : std::optional{mail.principalIdentityID},
          isFromUser ? "outbound" : "inbound",
          "message",
          isInCompany ? "group" : "direct",
          formatInternetDateTime(mail.sentAt),
          std::move(mail.participantIdentityIDs),
          isInCompany || isFromUser ? std::string{} : std::move(mail.messageID)};
}

/// One batch on its way into the tables, within one transaction.
class BatchWriter {
 public:
  BatchWriter(const SourceAccount& account, std::string_view now, Connection& connection)
      : account_(account), now_(now), connection_(connection) {}

  void write(MailBatch& batch, MailReport& report) {
    threads_.load(keysOf(batch), connection_);
    const auto forgotten = ForgottenPeople::in(connection_);
    Placement placement(threads_, uses_, forgotten, report);
    for (auto& mail : batch.mails()) {
      placement.place(mail);
    }
    for (const auto reason : batch.skips()) {
      ++report.skipped[reason];
    }
    report.read += static_cast<std::int64_t>(batch.size());
    threads_.write(connection_);
    noteMailOf(batch.ownAddresses(), connection_);
    for (const auto& [mail, thread] : placement.dropped()) {
      drop(mail, threads_.threadID(thread));
    }
    const auto placed = std::move(placement).placed();
    keepPeopleOf(placed, batch.people());
    batch.people().write(connection_, now_);
    uses_.write(connection_);
    writeHistory(placed);
    settle();
  }

 private:
  void writeHistory(std::span<const PlacedMail> placed) {
    HistoryRows rows;
    rows.reserve(placed.size());
    for (const auto& [mail, thread, isStored] : placed) {
      const auto& threadID = threads_.threadID(thread);
      if (isStored) {
        withdraw(mail->key, threadID);
      }
      auto row = rowOf(*mail, threadID);
      contact_.add(row);
      touchedThreadIDs_.push_back(threadID);
      note(*mail, row, thread);
      rows.addThread(row.threadID, "mail", std::move(mail->subject));
      rows.add(std::move(row));
    }
    rows.write(account_.id, now_, connection_);
  }

  void drop(MailKey mail, const std::string& threadID) {
    withdraw(mail, threadID);
    touchedThreadIDs_.push_back(threadID);
  }

  /// Takes back what a copy that told less has left.
  void withdraw(MailKey mail, const std::string& threadID) {
    if (const auto stored = storedMail(mail, threadID, connection_)) {
      contact_.remove(*stored);
      deleteInteraction(*stored, connection_);
    }
  }

  void note(PreparedMail& mail, const InteractionRow& row, std::size_t thread) {
    if (mail.isFromUser() && threads_.isStored(thread)) {
      questions_.reconsiderThread(row.threadID);
    } else if (mail.question && mail.standing == MailStanding::direct) {
      questions_.note(
          {row.id, mail.key, row.threadID, *row.senderIdentityID, row.occurredAt, *std::move(mail.question)});
    }
  }

  void settle() {
    std::ranges::sort(touchedThreadIDs_);
    const auto duplicates = std::ranges::unique(touchedThreadIDs_);
    touchedThreadIDs_.erase(duplicates.begin(), duplicates.end());
    setClocksRight(refreshWaitingThreads(touchedThreadIDs_, connection_));
    questions_.reconsiderMails(threads_.newlyAnswered());
    questions_.reconsiderPeople(contact_.write(connection_));
    questions_.settle(now_, connection_);
  }

  /// A mail that the user has answered does not come after the answer, whatever the clock of its sender said.
  void setClocksRight(std::span<const WaitingMail> waiting) {
    const auto answered = threads_.endingsOfAnswered();
    std::vector<std::string> movedThreadIDs;
    for (const auto& mail : waiting) {
      const std::string_view id = mail.interactionID;
      if (std::ranges::binary_search(answered, id.substr(id.size() - lengthOfMailIDEnding))) {
        moveBeforeAnswer(mail);
        movedThreadIDs.push_back(mail.threadID);
      }
    }
    refreshWaitingThreads(movedThreadIDs, connection_);
  }

  void moveBeforeAnswer(const WaitingMail& mail) {
    const auto answeredAt = connection_.fetchOptionalText(
        "SELECT max(occurred_at) FROM interaction WHERE thread_id = ? AND direction = 'outbound'", mail.threadID);
    auto stored = storedInteraction(mail.interactionID, connection_);
    const auto answer = answeredAt ? parseInternetDateTime(*answeredAt) : std::nullopt;
    if (!stored || !answer) {
      return;
    }
    contact_.remove(*stored);
    stored->occurredAt = formatInternetDateTime(*answer - std::chrono::seconds{1});
    contact_.add(*stored);
    connection_.execute("UPDATE interaction SET occurred_at = ? WHERE id = ?", stored->occurredAt, stored->id);
  }

  const SourceAccount& account_;
  std::string_view now_;
  Connection& connection_;
  ThreadLedger threads_;
  AddressUseLedger uses_;
  ContactLedger contact_;
  QuestionLedger questions_;
  std::vector<std::string> touchedThreadIDs_;
};

/// How long `body` had the store.
template <typename Body>
std::chrono::duration<double> timedWrite(DatabaseQueue& store, Body body) {
  std::chrono::steady_clock::time_point begin;
  store.write([&](Connection& connection) {
    begin = std::chrono::steady_clock::now();
    body(connection);
  });
  return std::chrono::steady_clock::now() - begin;
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

MailReport MailImporter::import(MailSource& source, const BatchWritten& batchWritten,
                                const AskWhatToKeep& askWhatToKeep) {
  const auto now = formatInternetDateTime(context_.now);
  SourceAccount account;
  const auto known = store_.write([&](Connection& connection) {
    account = context_.account ? *context_.account : mailAccountOf(context_.ownAddresses.front(), connection);
    recordImportStarted(account, now, connection);
    const auto own = rememberOwnAddresses(context_.ownAddresses, now, connection);
    noteReadingWithOwnAddresses(connection);
    return KnownAddresses{own, listIdentityIDs(connection)};
  });

  MailReport report;
  ImportWatch unwatched;
  auto& watch = context_.watch == nullptr ? unwatched : *context_.watch;
  watch.tellRead(0, {source.amountRead(), source.amountTotal()});
  watch.tellStored(0);
  BatchSize mailsPerBatch(mailsPerBatch_, context_.pace);
  BatchReader reader(source, known, mailsPerBatch, watch, askWhatToKeep);
  while (auto batch = reader.next()) {
    auto soFar = report;
    const auto took = timedWrite(store_, [&](Connection& connection) {
      BatchWriter(account, now, connection).write(batch->mails, soFar);
      if (batch->keptAlong) {
        batch->keptAlong(connection);
      }
    });
    mailsPerBatch.tellWritten(batch->mails.size(), took);
    report = std::move(soFar);
    watch.tellStored(report.read);
    store_.withoutTransaction(emptyLog);
    std::this_thread::sleep_for(turnOfOthers);
    if (batchWritten) {
      batchWritten(report);
    }
  }
  reader.rethrow();
  if (reader.isStopped()) {
    report.isStopped = true;
    return report;
  }
  store_.write([&](Connection& connection) { recordImportSucceeded(account, now, connection); });
  return report;
}

} // namespace orvan
