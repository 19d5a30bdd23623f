#pragma once

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/database_queue.h"
#include "application/import/ledger/card_importer.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/ledger/meeting_importer.h"
#include "application/sources/changed_mail.h"
#include "application/sources/collection_files.h"
#include "application/sources/remembered_source.h"

namespace orvan {

/// What became of one remembered source.
struct Refreshment {
  enum class Outcome {
    /// There was nothing to read.
    unchanged,
    read,
    /// It, or a part of it, could not be read: see the troubles. The rest of it is in the store.
    failed,
    /// The watch asked for a stop: what was read is in the store, and the next refresh goes on from there.
    stopped,
  };

  Outcome outcome = Outcome::unchanged;
  /// Of what was read.
  std::optional<MailReport> mail = std::nullopt;
  std::optional<MeetingReport> meetings = std::nullopt;
  std::optional<CardReport> cards = std::nullopt;
  std::vector<SourceTrouble> troubles = {};
  /// Folders of mail that was thrown away or not sent yet.
  std::vector<std::string> leftOut = {};
  /// Mailboxes that had shrunk or been replaced.
  std::vector<std::string> readAnew = {};
  /// The mail program has it open.
  bool isInUse = false;
};

/// Brings in what is new in remembered sources, one after the other, at a considerate pace. What was read is on disk
/// together with how far that is: a refresh that is cut short at whatever moment loses nothing, and reads nothing twice
/// but a mailbox's last mail.
class Refresh {
 public:
  /// The context says who the user is and what moment is taken for now; `systemNow` is the one by which the file system
  /// dates what it keeps. Store and the context's watch must outlive this.
  Refresh(DatabaseQueue& store, ImportContext context, Instant systemNow);

  /// What is wrong with the source is in the result; a fault of the store is thrown as StoreError.
  Refreshment bringIn(const RememberedSource& source);

 private:
  Refreshment mail(const RememberedSource& source);
  Refreshment calendar(const RememberedSource& source);
  Refreshment cards(const RememberedSource& source);
  /// The files of a calendar, or of contact cards; nothing while they are as they were read, and as long as that lasts.
  std::optional<CollectionFiles> filesToRead(const RememberedSource& source, std::string_view ending,
                                             std::optional<std::chrono::days> lasts);
  /// Notes that the files were read to their end.
  void keepRead(const RememberedSource& source, const CollectionFiles& files);
  void record(const RememberedSource& source, const Refreshment& result);
  ImportContext contextFor(const RememberedSource& source) const;
  std::set<std::string> ownAddresses() const;

  DatabaseQueue& store_;
  ImportContext context_;
  Instant systemNow_;
  /// Stands for the user's addresses.
  std::string readFor_;
};

} // namespace orvan
